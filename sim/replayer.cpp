#include "replayer.h"

#include <chrono>

#include "mio_json.h"

namespace sim {

namespace {

// The request's "command" text, or empty.
std::string command_of(std::string_view line) {
    JsonPtr request(cJSON_ParseWithLength(line.data(), line.size()));
    const char* name = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(request.get(), "command"));
    return name ? name : "";
}

}  // namespace

Replayer::Replayer(const Options& options, NoteSink notes)
    : options_(options), log_(std::move(notes), options.log_path) {
    std::map<int, std::size_t> index;  // recorded connection to its session
    std::map<int, double> last_request_ms;
    for (const RecordedLine& line : read_recording(options_.replay_path)) {
        if (line.mark == '+') {
            index[line.connection] = sessions_.size();
            sessions_.push_back(Session{{Exchange{}}});
            last_request_ms[line.connection] = line.ms;
            continue;
        }
        auto found = index.find(line.connection);
        if (found == index.end()) continue;  // the recording began inside this connection
        Session& session = sessions_[found->second];
        if (line.mark == '>') {
            session.exchanges.push_back(Exchange{line.text, {}});
            last_request_ms[line.connection] = line.ms;
        } else if (line.mark == '<') {
            session.exchanges.back().answers.push_back({line.ms - last_request_ms[line.connection], line.text});
        }
    }
    listener_ = std::make_unique<Listener>(loop_, options_.bind, options_.port, "replayer", log_,
                                           [this](Fd client, const sockaddr_in& peer) { accept(std::move(client), peer); });
}

Replayer::~Replayer() {
    listener_.reset();
    connections_.clear();
}

void Replayer::accept(Fd client, const sockaddr_in& peer) {
    if (next_session_ >= sessions_.size()) {
        log_.note("client from " + address_text(peer) + ": the recording holds no further connection");
        return;
    }
    const int id = next_id_++;
    log_.note(id, address_text(peer) + " replays recorded connection " +
              std::to_string(next_session_ + 1));
    session_of_[id] = next_session_++;
    auto connection = std::make_unique<Connection>(
        loop_, std::move(client), 0, id, no_faults_, log_,
        [this](Connection& from, std::string_view line) { serve(from, line); },
        [this](Connection& closed) {
            loop_.post([this, id = closed.id()] {
                connections_.erase(id);
                session_of_.erase(id);
            });
        });
    answer(*connection, sessions_[session_of_[id]].exchanges.front());
    connections_[id] = std::move(connection);
}

void Replayer::answer(Connection& to, const Exchange& exchange) {
    for (const Answer& a : exchange.answers)
        to.send(a.line, std::chrono::duration_cast<Connection::Clock::duration>(
                            std::chrono::duration<double, std::milli>(a.after_ms / options_.speed_factor)));
}

void Replayer::serve(Connection& from, std::string_view line) {
    Session& session = sessions_[session_of_.at(from.id())];
    const std::string name = command_of(line);
    std::size_t match = session.exchanges.size();
    for (std::size_t i = session.next; i < session.exchanges.size() && match == session.exchanges.size(); ++i)
        if (session.exchanges[i].request == line) match = i;
    for (std::size_t i = session.next; i < session.exchanges.size() && match == session.exchanges.size(); ++i)
        if (!name.empty() && command_of(session.exchanges[i].request) == name) match = i;
    if (match == session.exchanges.size()) {
        log_.note(from.id(), std::string("not in the recording: ").append(line.substr(0, 200)));
        JsonPtr error(cJSON_CreateObject());
        cJSON_AddStringToObject(error.get(), "command", name.empty() ? "error" : name.c_str());
        cJSON_AddStringToObject(error.get(), "error", "not in the recording");
        JsonText text(cJSON_PrintUnformatted(error.get()));
        from.reply(text.get());
        return;
    }
    if (match > session.next)
        log_.note(from.id(), std::to_string(match - session.next) +
                  " recorded requests skipped");
    session.next = match + 1;
    answer(from, session.exchanges[match]);
}

}  // namespace sim
