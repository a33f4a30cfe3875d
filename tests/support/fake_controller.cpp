#include "fake_controller.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cjson/cJSON.h>

#include <cerrno>
#include <cstdint>
#include <stdexcept>

#include "qm_interface.h"

namespace qm_test {

namespace {

std::string command_of(const std::string& line) {
    cJSON* tree = cJSON_Parse(line.c_str());
    std::string command;
    if (const cJSON* item = cJSON_GetObjectItem(tree, "command"); cJSON_IsString(item))
        command = item->valuestring;
    cJSON_Delete(tree);
    return command;
}

}  // namespace

const std::map<std::string, std::string>& standard_sync_replies() {
    static const std::map<std::string, std::string> replies = {
        {"get_realtime_push",
         R"({"command":"get_realtime_push","cycle":5,"enable":false,"port":8089,)"
         R"("ip":"127.0.0.1","custom":{}})"},
        // A six-joint QM65 with the basic flange (-B) on a third-generation controller.
        {"get_arm_software_info",
         R"({"command":"arm_software_info","Product_version":"QM65-B",)"
         R"("algorithm_info":{"version":"1.5.3"},)"
         R"("ctrl_info":{"build_time":"2024-05-06 10:00:00","version":"1.4.2"},)"
         R"("dynamic_info":{"model_version":"2.0"},)"
         R"("plan_info":{"build_time":"2024-05-06 10:00:00","version":"1.4.2"}})"},
        {"get_current_work_frame",
         R"({"command":"current_work_frame","frame_name":"World","pose":[0,0,0,0,0,0]})"},
        {"get_current_tool_frame",
         R"({"command":"current_tool_frame","tool_name":"Arm_Tip","pose":[0,0,0,0,0,0],)"
         R"("payload":0,"position":[0,0,0]})"},
        {"get_install_pose", R"({"command":"install_pose","pose":[0,0,0]})"},
        {"get_joint_min_pos",
         R"({"command":"joint_min_pos","min_pos":[-178000,-130000,-135000,-178000,-128000,-360000]})"},
        {"get_joint_max_pos",
         R"({"command":"joint_max_pos","max_pos":[178000,130000,135000,178000,128000,360000]})"},
        {"get_joint_max_acc",
         R"({"command":"joint_max_acc","joint_acc":[100000,100000,100000,100000,100000,100000]})"},
        {"get_joint_max_speed",
         R"({"command":"joint_max_speed","joint_speed":[30000,30000,30000,30000,30000,30000]})"},
        // The kinematics library's nominal QM65-B table: lengths in micrometres, angles in milliradians.
        {"get_DH_data",
         R"({"command":"get_DH_data","joint_1":[0,0,240500,0],"joint_2":[1571,0,0,1571],)"
         R"("joint_3":[0,256000,0,1571],"joint_4":[1571,0,210000,0],"joint_5":[-1571,0,0,0],)"
         R"("joint_6":[1571,0,144000,0],"joint_7":[0,0,0,0]})"},
    };
    return replies;
}

FakeController::FakeController() {
    listen_fd_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    wake_fd_ = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (listen_fd_ < 0 || wake_fd_ < 0) throw std::runtime_error("fake controller: socket");
    int one = 1;
    setsockopt(listen_fd_, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    addr.sin_port = 0;
    socklen_t len = sizeof addr;
    if (::bind(listen_fd_, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 ||
        ::listen(listen_fd_, 8) != 0 ||
        ::getsockname(listen_fd_, reinterpret_cast<sockaddr*>(&addr), &len) != 0)
        throw std::runtime_error("fake controller: bind");
    port_ = ntohs(addr.sin_port);
    thread_ = std::thread([this] { serve(); });
}

FakeController::~FakeController() {
    uint64_t one = 1;
    [[maybe_unused]] ssize_t n = ::write(wake_fd_, &one, sizeof one);
    thread_.join();
    if (client_fd_ >= 0) ::close(client_fd_);
    ::close(listen_fd_);
    ::close(wake_fd_);
}

void FakeController::reply(const std::string& command, const std::string& reply_line) {
    on(command, [line = reply_line + "\r\n"](const std::string&) { return line; });
}

void FakeController::on(const std::string& command, Responder responder) {
    std::lock_guard lock(mutex_);
    script_[command] = std::move(responder);
}

void FakeController::forget(const std::string& command) {
    std::lock_guard lock(mutex_);
    script_.erase(command);
}

void FakeController::answer_sync_queries() {
    for (const auto& [command, line] : standard_sync_replies()) reply(command, line);
}

std::string FakeController::received() const {
    std::lock_guard lock(mutex_);
    return received_;
}

std::vector<std::string> FakeController::lines() const {
    std::lock_guard lock(mutex_);
    return lines_;
}

std::optional<std::string> FakeController::wait_line(std::size_t n,
                                                      std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    if (!changed_.wait_for(lock, timeout, [&] { return lines_.size() > n; })) return std::nullopt;
    return lines_[n];
}

std::optional<std::string> FakeController::wait_command(const std::string& command,
                                                         std::chrono::milliseconds timeout,
                                                         std::size_t from) const {
    std::unique_lock lock(mutex_);
    std::optional<std::string> found;
    changed_.wait_for(lock, timeout, [&] {
        for (std::size_t i = from; i < lines_.size(); ++i)
            if (command_of(lines_[i]) == command) {
                found = lines_[i];
                return true;
            }
        return false;
    });
    return found;
}

void FakeController::clear_received() {
    std::lock_guard lock(mutex_);
    received_.clear();
    lines_.clear();
}

bool FakeController::wait_connected(std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, timeout, [&] { return client_fd_ >= 0; });
}

bool FakeController::push(std::string_view bytes) {
    int fd;
    {
        std::lock_guard lock(mutex_);
        fd = client_fd_;
    }
    return fd >= 0 && send_all(fd, bytes);
}

bool FakeController::push_split(std::string_view bytes, std::size_t piece,
                                std::chrono::milliseconds gap) {
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
        if (at > 0) std::this_thread::sleep_for(gap);
        if (!push(bytes.substr(at, piece))) return false;
    }
    return true;
}

void FakeController::close_client() {
    int fd;
    {
        // Only shut down here: the serving thread may be polling the descriptor, so it
        // closes it itself once it sees the end of the stream.
        std::lock_guard lock(mutex_);
        fd = client_fd_;
        if (fd >= 0) ::shutdown(fd, SHUT_RDWR);
    }
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, 2s, [&] { return client_fd_ != fd; });
}

bool FakeController::send_all(int fd, std::string_view bytes) {
    std::lock_guard lock(send_mutex_);
    while (!bytes.empty()) {
        ssize_t n = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

void FakeController::serve() {
    char buf[65536];
    for (;;) {
        int client;
        {
            std::lock_guard lock(mutex_);
            client = client_fd_;
        }
        pollfd fds[3] = {{wake_fd_, POLLIN, 0}, {listen_fd_, POLLIN, 0}, {client, POLLIN, 0}};
        if (::poll(fds, client >= 0 ? 3 : 2, 20) < 0 && errno != EINTR) return;
        if (fds[0].revents) return;
        if (fds[1].revents & POLLIN) {
            int fd = ::accept4(listen_fd_, nullptr, nullptr, SOCK_CLOEXEC);
            if (fd >= 0) {
                int one = 1;
                setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
                std::lock_guard lock(mutex_);
                if (client_fd_ >= 0) ::close(client_fd_);
                client_fd_ = fd;
                pending_.clear();
                changed_.notify_all();
            }
            continue;
        }
        if (client < 0 || !(fds[2].revents & (POLLIN | POLLHUP | POLLERR))) continue;
        ssize_t n = ::recv(client, buf, sizeof buf, MSG_DONTWAIT);
        if (n > 0) {
            handle_bytes(buf, static_cast<std::size_t>(n));
        } else if (n == 0 || (errno != EAGAIN && errno != EINTR)) {
            std::lock_guard lock(mutex_);
            if (client_fd_ == client) {
                ::close(client_fd_);
                client_fd_ = -1;
                pending_.clear();
                changed_.notify_all();
            }
        }
    }
}

void FakeController::handle_bytes(const char* data, std::size_t len) {
    std::vector<std::pair<std::string, Responder>> requests;
    int fd;
    {
        std::lock_guard lock(mutex_);
        fd = client_fd_;
        received_.append(data, len);
        pending_.append(data, len);
        for (std::size_t end; (end = pending_.find("\r\n")) != std::string::npos;) {
            std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 2);
            lines_.push_back(line);
            auto it = script_.find(command_of(line));
            requests.emplace_back(std::move(line), it == script_.end() ? Responder{} : it->second);
        }
        changed_.notify_all();
    }
    // Responders run without the lock, so they may call back into the controller.
    for (auto& [line, responder] : requests) {
        if (!responder) continue;
        if (std::optional<std::string> answer = responder(line); answer && fd >= 0)
            send_all(fd, *answer);
    }
}

ArmSession::ArmSession(FakeController& controller, qm_thread_mode_e mode) {
    controller.answer_sync_queries();
    qm_init(mode);
    handle_ = qm_create_robot_arm("127.0.0.1", controller.port());
    controller.wait_connected();
    controller.clear_received();
}

ArmSession::~ArmSession() {
    if (handle_) qm_delete_robot_arm(handle_);
    qm_destory();
}

}  // namespace qm_test
