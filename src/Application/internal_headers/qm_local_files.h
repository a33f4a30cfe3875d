// Names and time stamps of what the library writes or sends about the caller's files.
#ifndef QM_LOCAL_FILES_H
#define QM_LOCAL_FILES_H

#include <string>
#include <string_view>

constexpr std::size_t kFileNameMax = 300;  // TRAJECTORY_FILE_NAME_MAX_LENGTH

// The name of `path` without directory and extension: the part after the last "/" (or, when
// there is none, after the last "\"), cut at its last "."; at most 300 characters of the path count.
std::string file_stem(std::string_view path);

// The local time now, formatted by strftime's `format`.
std::string local_time_text(const char* format);

#endif
