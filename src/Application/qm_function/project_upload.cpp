// Uploading projects: the optional flowchart wrapping, the announcement, the pieces and the
// controller's verdict.
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "log.h"
#include "qm_command.h"
#include "qm_files.h"
#include "qm_handle.h"
#include "qm_interface.h"
#include "qm_local_files.h"
#include "qm_reply_object.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

constexpr std::size_t kUploadPiece = 100;
constexpr milliseconds kUploadPause = 2ms;
constexpr milliseconds kUploadVerdictWait = 2000ms;
constexpr std::size_t kTextPiece = 10;
constexpr milliseconds kTextVerdictWait = 10000ms;
constexpr int kLineRead = 1024;  // a longer line counts more than once

// Lines of the file, counted as reads of at most 1023 characters. A file that cannot be
// opened here ends the process with status 1: the upload has always treated it so. The exit
// skips static destructors, which would abort on the receive threads still running.
int countLinesInFile(const char* path) {
    FilePtr file = open_file(path, "r");
    if (!file) {
        std::perror("打开文件失败");
        std::fflush(nullptr);
        std::_Exit(1);
    }
    char line[kLineRead];
    int count = 0;
    while (std::fgets(line, sizeof line, file.get())) ++count;
    return count;
}

// Writes `destination` as the flowchart project holding `source`: two header lines, the
// second carrying the source's line count as "type" (intended), then the source unchanged.
void add_lines_to_file(qm_robot_handle* handle, const char* source, const char* destination) {
    qm_robot_info_t info{};
    if (qm_get_robot_info(handle, &info) != 0) {
        std::fputs("Failed to get robot info", stdout);
        return;
    }
    if (info.arm_dof == 0 || info.arm_dof > 10) {
        std::fputs("Invalid degree of freedom", stdout);
        return;
    }
    const int lines = countLinesInFile(source);
    FilePtr in = open_file(source, "rb");
    if (!in) {
        std::printf("Failed to open file: %s\n", source);
        return;
    }
    FilePtr out = open_file(destination, "wb");
    if (!out) {
        std::perror("Error opening file");
        return;
    }
    std::fprintf(out.get(), "{\"file\":%d}\r\n", info.arm_dof);
    std::fprintf(out.get(),
                 "{\"name\":\"Folder\",\"num\":1,\"type\":%d,\"enabled\":true,\"parent_number\":0}\r\n",
                 lines);
    char block[kLineRead];
    for (std::size_t n; (n = std::fread(block, 1, sizeof block, in.get())) > 0;)
        std::fwrite(block, 1, n, out.get());
}

// The whole file, or -5 after saying why it could not be read.
int read_whole_file(const char* path, std::string& content) {
    FilePtr file = open_file(path, "rb");
    if (!file) {
        qm_log_error("File open failed\n");
        return -5;
    }
    struct stat info {};
    if (::fstat(::fileno(file.get()), &info) != 0 || !S_ISREG(info.st_mode) || info.st_size > INT_MAX) {
        qm_log_error("Failed to get file size\n");
        return -5;
    }
    try {
        content.resize(static_cast<std::size_t>(info.st_size));
    } catch (const std::bad_alloc&) {
        qm_log_error("Memory allocation failed\n");
        return -5;
    }
    if (std::fread(content.data(), 1, content.size(), file.get()) != content.size()) {
        qm_log_error("Failed to read entire file\n");
        return -5;
    }
    return 0;
}

// The directory part of `path`, up to and including its last separator; npos without one.
std::size_t directory_end(const std::string& path) {
    std::size_t separator = path.rfind('/');
    if (separator == std::string::npos) separator = path.rfind('\\');
    return separator;
}

// The controller's verdict on an upload: -1 into err_line when it took the project, else the
// line it refused.
int await_verdict(const char* caller, qm_robot_handle* handle, milliseconds wait, int* err_line) {
    std::string text;
    const int rc =
        exchange(caller, handle, Request::nothing(), Reply::query("download_project").within(wait), text);
    if (rc < 1) return rc;
    const int verdict = parse_qm_set_command(caller, text.c_str(), "project_state");
    if (!err_line) return verdict;
    if (verdict == 0) {
        *err_line = -1;
    } else {
        JsonPtr root = json_parse(text.c_str());
        int line = 0;
        if (ObjectReader(root.get()).integer("err_line", line).ok()) *err_line = line;
    }
    return verdict;
}

}  // namespace

extern "C" {

int qm_run_project(qm_robot_handle* handle, qm_send_project_t project, int file_size) {
    const std::string name = field_text(project.project_path);
    Request req("run_project");
    req.str("project_name", name.c_str())
        .integer("file_size", file_size)
        .integer("plan_speed", project.plan_speed)
        .integer("step_flag", project.step_flag)
        .integer("only_save", project.only_save)
        .integer("save_id", project.save_id);
    return send_set(__func__, handle, req, Reply("run_project", "project_state"));
}

int qm_send_project(qm_robot_handle* handle, qm_send_project_t project, int* err_line) {
    int generation = 0;
    if (with_record(handle, [&](qm_handle_t& record) { generation = record.robot_controller_version; }) != 0)
        return -1;
    if (generation == 4) return -6;  // the fourth generation takes projects another way

    const std::string whole = field_text(project.project_path);
    const std::string path = whole.substr(0, static_cast<std::size_t>(std::max(project.project_path_len, 0)));
    const std::string stem = file_stem(path);
    std::string upload = path;
    if (project.project_type != 0) {
        const std::string name = stem + local_time_text("%H_%M_%S") + ".txt";
        qm_log_debug("Save As: [%s]\n", name.c_str());
        const std::size_t separator = directory_end(path);
        if (separator == std::string::npos) {
            qm_log_error("File name check error!\n");
            return -4;
        }
        upload = path.substr(0, separator + 1) + name;
        add_lines_to_file(handle, path.c_str(), upload.c_str());
    }

    std::string content;
    if (int rc = read_whole_file(upload.c_str(), content)) return rc;

    copy_text(project.project_path, stem.c_str());
    project.project_path_len = static_cast<int>(std::strlen(project.project_path));
    if (int rc = qm_run_project(handle, project, static_cast<int>(content.size()))) {
        qm_log_error("[qm_run_project] failed\n");
        return rc;
    }
    if (send_raw(handle, content, kUploadPiece, kUploadPause) != 0) return -1;
    return await_verdict(__func__, handle, kUploadVerdictWait, err_line);
}

int qm_send_project_lock(qm_robot_handle* handle, const char* data, int data_len, int* err_line) {
    if (!data && data_len > 0) return 1;
    const std::string_view text(data ? data : "", data ? static_cast<std::size_t>(std::max(data_len, 0)) : 0);
    if (send_raw(handle, text, kTextPiece, 0ms) != 0) return -1;
    return await_verdict(__func__, handle, kTextVerdictWait, err_line);
}

}  // extern "C"
