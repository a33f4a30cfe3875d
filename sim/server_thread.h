// Runs a server (the simulator, the recording proxy, the replayer) on a thread of its own for
// as long as it lives: tests and benchmarks start one in-process.
//
//     sim::ServerThread<sim::Simulator> simulator(options);
//     qm_create_robot_arm("127.0.0.1", simulator->port(0));
#ifndef QM_SIM_SERVER_THREAD_H
#define QM_SIM_SERVER_THREAD_H

#include <memory>
#include <thread>
#include <utility>

namespace sim {

template <class Server>
class ServerThread {
public:
    // Constructs the server here (its constructor may throw), then serves on the thread.
    template <class... Args>
    explicit ServerThread(Args&&... args)
        : server_(std::make_unique<Server>(std::forward<Args>(args)...)), thread_([this] { server_->run(); }) {}
    ~ServerThread() {
        server_->stop();
        thread_.join();
    }
    ServerThread(const ServerThread&) = delete;
    ServerThread& operator=(const ServerThread&) = delete;

    Server& operator*() { return *server_; }
    Server* operator->() { return server_.get(); }

private:
    std::unique_ptr<Server> server_;
    std::thread thread_;
};

}  // namespace sim

#endif
