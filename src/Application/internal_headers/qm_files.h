// An owner for C files, so every path closes what it opened.
#ifndef QM_FILES_H
#define QM_FILES_H

#include <cstdio>
#include <memory>

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

inline FilePtr open_file(const char* path, const char* mode) {
    return FilePtr(std::fopen(path, mode));
}

#endif
