// Cuts one connection's byte stream into JSON lines ending "\r\n".
#ifndef QM_LINE_SPLITTER_H
#define QM_LINE_SPLITTER_H

#include <cstddef>
#include <string>
#include <string_view>

#include "qm_fifo.h"

// Usage per read:  splitter.append(bytes); while (splitter.next_line(line)) file(line);
//
// A line ends at "\r\n"; an end among the first 5 bytes of a read's text is not
// recognised (lines are always longer). A read that stops inside a line keeps the
// unfinished text for the next read, unless that text is already one complete JSON
// object, which counts as a line of its own. Unfinished text is dropped when the read
// ended in "\n", when it cannot start an object, or when it reaches FIFO_LINE_MAX bytes
// (the rest of such a line is skipped up to its line end).
class LineSplitter {
public:
    void append(std::string_view bytes);
    // The next complete line (without its line end), valid until the next call; false when
    // the read's lines are exhausted.
    bool next_line(std::string_view& line);
    void reset();
    // Bytes of an unfinished line waiting for the next read.
    std::size_t pending() const { return buffer_.size() - line_start_; }

private:
    void skip_long_line(std::string_view& bytes);
    bool complete_object_remains() const;
    void finish_read();

    std::string buffer_;
    std::size_t line_start_ = 0;
    bool ended_in_newline_ = false;
    bool skipping_ = false;    // inside a line that was too long
    bool skipped_cr_ = false;  // ... whose skipped part ended in "\r"
};

#endif
