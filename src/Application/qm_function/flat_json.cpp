// Reading the plain common form of JSON into a flat table (see qm_flat_json.h). Every rule
// follows cJSON_Parse; where the two could differ the reader declines instead.
#include <cctype>
#include <climits>
#include <cstring>

#include "qm_flat_json.h"

namespace {

// cJSON's blanks: every byte up to the space.
const char* skip_blanks(const char* p) {
    while (*p != '\0' && static_cast<unsigned char>(*p) <= 32) ++p;
    return p;
}

// The text at p begins with word (compared up to the first difference, so never past p's end).
bool starts_with(const char* p, const char* word) {
    for (; *word != '\0'; ++p, ++word)
        if (*p != *word) return false;
    return true;
}

// cJSON's key comparison, byte by byte through tolower, for keys of equal length (keys of other
// lengths never compare equal).
bool same_key(const char* a, const char* b, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) {
        if (a[i] != b[i] &&
            std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}

// Characters cJSON takes into a number before converting it.
bool number_char(char c) { return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == 'e' || c == 'E' || c == '.'; }

constexpr int kMaxDigits = 15;  // exact in a double, as strtod would give it

}  // namespace

FlatJson::Item FlatJson::Item::member(const char* key) const {
    if (!is(Kind::kObject)) return {};
    const std::size_t length = std::strlen(key);
    for (Item m = first(); m; m = m.next())
        if (m.node().key_len == length && same_key(key, doc_->pool_.data() + m.node().key, length)) return m;
    return {};
}

bool FlatJson::read(const char* text) {
    count_ = 0;
    pool_used_ = 0;
    if (text == nullptr || starts_with(text, "\xEF\xBB\xBF")) return false;  // a byte-order mark: cJSON's
    const int root = add(Kind::kNull);
    return root == 0 && value(skip_blanks(text), root, 0) != nullptr;
}

int FlatJson::add(Kind kind) {
    if (count_ == kMaxNodes) return -1;
    Node& n = nodes_[static_cast<std::size_t>(count_)];
    n = Node{kind, 0, -1, -1, -1, -1, 0, 0, 0.0};
    return count_++;
}

// The value at p into node index; what follows it, or null when declined.
const char* FlatJson::value(const char* p, int index, int depth) {
    Node& node = nodes_[static_cast<std::size_t>(index)];
    if (*p == 'n' && starts_with(p, "null")) {
        node.kind = Kind::kNull;
        return p + 4;
    }
    if (*p == 'f' && starts_with(p, "false")) {
        node.kind = Kind::kFalse;
        return p + 5;
    }
    if (*p == 't' && starts_with(p, "true")) {
        node.kind = Kind::kTrue;
        node.int_value = 1;
        return p + 4;
    }
    if (*p == '"') {
        node.kind = Kind::kString;
        uint16_t unused;
        return string(p, node.text, unused);
    }
    if (*p == '-' || (*p >= '0' && *p <= '9')) return number(p, node);
    const bool array = *p == '[';
    if ((!array && *p != '{') || depth == kMaxDepth) return nullptr;
    node.kind = array ? Kind::kArray : Kind::kObject;
    const char close = array ? ']' : '}';
    p = skip_blanks(p + 1);
    if (*p == close) return p + 1;
    int last = -1;
    for (;;) {
        const int child = add(Kind::kNull);
        if (child < 0) return nullptr;
        Node& c = nodes_[static_cast<std::size_t>(child)];
        if (!array) {
            p = string(p, c.key, c.key_len);
            if (p == nullptr) return nullptr;
            p = skip_blanks(p);
            if (*p != ':') return nullptr;
            p = skip_blanks(p + 1);
        }
        p = value(p, child, depth + 1);
        if (p == nullptr) return nullptr;
        if (last < 0)
            node.child = child;
        else
            nodes_[static_cast<std::size_t>(last)].next = child;
        ++node.count;
        last = child;
        p = skip_blanks(p);
        if (*p != ',') break;
        p = skip_blanks(p + 1);
    }
    return *p == close ? p + 1 : nullptr;
}

// A string at p without escapes, copied terminated into the pool.
const char* FlatJson::string(const char* p, int32_t& offset, uint16_t& length) {
    if (*p != '"') return nullptr;
    const char* begin = p + 1;
    const char* end = begin;
    while (*end != '"') {
        if (*end == '\0' || *end == '\\') return nullptr;
        ++end;
    }
    const auto n = static_cast<std::size_t>(end - begin);
    if (n > UINT16_MAX || pool_used_ + n + 1 > pool_.size()) return nullptr;
    std::memcpy(pool_.data() + pool_used_, begin, n);
    pool_[pool_used_ + n] = '\0';
    offset = static_cast<int32_t>(pool_used_);
    length = static_cast<uint16_t>(n);
    pool_used_ += n + 1;
    return end + 1;
}

// An integer of at most kMaxDigits digits at p; its double and cJSON's saturated int.
const char* FlatJson::number(const char* p, Node& node) {
    const bool negative = *p == '-';
    const char* digit = negative ? p + 1 : p;
    int64_t magnitude = 0;
    int digits = 0;
    for (; *digit >= '0' && *digit <= '9'; ++digit, ++digits) {
        if (digits == kMaxDigits) return nullptr;
        magnitude = magnitude * 10 + (*digit - '0');
    }
    if (digits == 0 || number_char(*digit)) return nullptr;  // a fraction, an exponent or a stray sign
    node.kind = Kind::kNumber;
    node.number = negative ? -static_cast<double>(magnitude) : static_cast<double>(magnitude);
    if (node.number >= INT_MAX)
        node.int_value = INT_MAX;
    else if (node.number <= static_cast<double>(INT_MIN))
        node.int_value = INT_MIN;
    else
        node.int_value = static_cast<int32_t>(node.number);
    return digit;
}
