// A JSON text read into a flat table without allocation, for the realtime push: a full
// datagram holds some five hundred numbers, and cJSON spends most of its time allocating a
// node for each and converting it with strtod.
//
// It reads only the plain common form, and in that form exactly what cJSON_Parse reads: one
// value after leading bytes up to the space, the rest of the text ignored; strings without
// escapes; numbers that are integers of at most 15 digits. Anything else (escapes, fractions,
// exponents, deep nesting, more values than the table holds) it declines, so that the caller
// can hand the text to cJSON, which then decides. A text it declines is not necessarily invalid.
#ifndef QM_FLAT_JSON_H
#define QM_FLAT_JSON_H

#include <array>
#include <cstddef>
#include <cstdint>

class FlatJson {
public:
    enum class Kind : uint8_t { kFalse, kTrue, kNull, kNumber, kString, kArray, kObject };

private:
    struct Node {
        Kind kind;
        uint16_t key_len;
        int32_t key;   // pool offset of an object member's key, else -1
        int32_t text;  // pool offset of a string's text
        int32_t next;
        int32_t child;
        int32_t count;
        int32_t int_value;
        double number;
    };

public:
    // One value of the text; a default Item is "absent", as a null cJSON pointer.
    class Item {
    public:
        Item() = default;
        explicit operator bool() const { return doc_ != nullptr; }
        bool is(Kind kind) const { return doc_ && node().kind == kind; }
        // cJSON's valueint: the number saturated to int, 1 for true, else 0.
        int int_value() const { return doc_ ? node().int_value : 0; }
        double double_value() const { return doc_ ? node().number : 0.0; }
        // The text of a string, null for any other value.
        const char* text() const { return is(Kind::kString) ? doc_->pool_.data() + node().text : nullptr; }
        // The first member or element, and the next one after this.
        Item first() const { return doc_ ? at(node().child) : Item{}; }
        Item next() const { return doc_ ? at(node().next) : Item{}; }
        int size() const { return doc_ ? node().count : 0; }
        // The first member of an object whose key equals `key` ignoring case, as cJSON_GetObjectItem.
        Item member(const char* key) const;

    private:
        friend class FlatJson;
        Item(const FlatJson* doc, int index) : doc_(doc), index_(index) {}
        Item at(int index) const { return index < 0 ? Item{} : Item{doc_, index}; }
        const Node& node() const { return doc_->nodes_[static_cast<std::size_t>(index_)]; }
        const FlatJson* doc_ = nullptr;
        int index_ = 0;
    };

    // Reads text; false when it declines it (see above).
    bool read(const char* text);
    Item root() const { return count_ > 0 ? Item{this, 0} : Item{}; }

private:
    static constexpr int kMaxNodes = 1280;
    static constexpr int kMaxDepth = 32;
    static constexpr std::size_t kPoolSize = 4096;  // keys and strings, each terminated

    const char* value(const char* p, int index, int depth);
    const char* string(const char* p, int32_t& offset, uint16_t& length);
    const char* number(const char* p, Node& node);
    int add(Kind kind);

    std::array<Node, kMaxNodes> nodes_;
    int count_ = 0;
    std::array<char, kPoolSize> pool_;
    std::size_t pool_used_ = 0;
};

#endif
