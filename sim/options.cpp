#include "options.h"

#include <arpa/inet.h>
#include <getopt.h>

#include <charconv>
#include <sstream>

#include "arm_model.h"

namespace sim {

namespace {

template <class Number>
Number number(const char* name, const char* text, Number low, Number high) {
    Number value{};
    const char* end = text + std::char_traits<char>::length(text);
    auto [rest, error] = std::from_chars(text, end, value);
    if (error != std::errc() || rest != end || value < low || value > high) {
        std::ostringstream why;
        why << "--" << name << ": expected a number from " << low << " to " << high << ", got '" << text
            << "'";
        throw UsageError(why.str());
    }
    return value;
}

std::vector<int> positions(const char* text) {
    std::vector<int> cuts;
    std::istringstream in{std::string(text)};
    for (std::string item; std::getline(in, item, ',');)
        cuts.push_back(number("fault-split", item.c_str(), 1, 1 << 20));
    if (cuts.empty()) throw UsageError("--fault-split: expected byte positions such as 5,20");
    return cuts;
}

using std::chrono::milliseconds;

// One option: its names, its value (null: a flag), what it does to the options, its help.
struct Flag {
    const char* heading;  // starts a group in the help text
    char letter;          // 0: long name only
    const char* name;
    const char* value;
    void (*apply)(Options& o, const char* v);
    const char* help;
};

const Flag kFlags[] = {
    {"Arms", 'm', "model", "TEXT", [](Options& o, const char* v) { o.model = v; },
     "a model and its force-sensing suffix, as listed below (default QM65-B)"},
    {nullptr, 'g', "generation", "N",
     [](Options& o, const char* v) { o.generation = number("generation", v, 3, 4); },
     "controller generation, 3 or 4 (default 3)"},
    {nullptr, 'a', "arms", "N", [](Options& o, const char* v) { o.arms = number("arms", v, 1, 5); },
     "arms on consecutive ports, 1 to 5 (default 1)"},
    {nullptr, 's', "speed-factor", "X",
     [](Options& o, const char* v) { o.speed_factor = number("speed-factor", v, 0.1, 100.0); },
     "simulated seconds per second, 0.1 to 100 (default 1)"},
    {"Network", 'p', "port", "N", [](Options& o, const char* v) { o.port = number("port", v, 0, 65535); },
     "TCP port of the first arm; 0 picks free ports (default 8080)"},
    {nullptr, 0, "bind", "ADDRESS", [](Options& o, const char* v) { o.bind = v; },
     "listening address (default 127.0.0.1); the protocol has no authentication:\n"
     "                              whoever reaches the address can move the arm"},
    {nullptr, 0, "port-file", "FILE", [](Options& o, const char* v) { o.port_file = v; },
     "write the first arm's port to FILE once listening"},
    {nullptr, 0, "log", "FILE", [](Options& o, const char* v) { o.log_path = v; },
     "log every line in and out to FILE ('-': standard error)"},
    {"Realtime push (each arm's default; clients change it with set_realtime_push)", 0, "push-ip", "ADDRESS",
     [](Options& o, const char* v) { o.push.ip = v; }, "destination address (default 127.0.0.1)"},
    {nullptr, 0, "push-port", "N",
     [](Options& o, const char* v) { o.push.port = number("push-port", v, 0, 65535); },
     "destination port of arm 1, the others count up; 0 picks free ports\n"
     "                              (default 8089)"},
    {nullptr, 0, "push-cycle", "MS",
     [](Options& o, const char* v) { o.push.cycle_ms = number("push-cycle", v, 1, 10000); },
     "push period in milliseconds, 1 (1 kHz) to 10000 (default 10)"},
    {nullptr, 0, "no-push", nullptr, [](Options& o, const char*) { o.push.enable = false; },
     "start with the push disabled"},
    {"Fault injection (off by default)", 0, "fault-delay", "MS",
     [](Options& o, const char* v) {
         o.faults.reply_delay = milliseconds(number("fault-delay", v, 0, 600000));
     },
     "send every reply MS milliseconds late"},
    {nullptr, 0, "fault-drop", "FRACTION",
     [](Options& o, const char* v) { o.faults.drop_replies = number("fault-drop", v, 0.0, 1.0); },
     "never send this fraction (0 to 1) of the replies"},
    {nullptr, 0, "fault-split", "N[,N...]",
     [](Options& o, const char* v) { o.faults.split_at = positions(v); },
     "cut every line into separate writes at these byte positions"},
    {nullptr, 0, "fault-split-gap", "MS",
     [](Options& o, const char* v) {
         o.faults.split_gap = milliseconds(number("fault-split-gap", v, 0, 10000));
     },
     "pause between the pieces of a cut line (default 2)"},
    {nullptr, 0, "fault-close-after", "N",
     [](Options& o, const char* v) { o.faults.close_after = number("fault-close-after", v, 1, 1 << 30); },
     "close each connection after its N-th command"},
    {nullptr, 0, "fault-garbage", "N",
     [](Options& o, const char* v) { o.faults.garbage_every = number("fault-garbage", v, 1, 1 << 30); },
     "precede every N-th reply with a line that is not JSON"},
    {nullptr, 0, "fault-oversized", "N",
     [](Options& o, const char* v) { o.faults.oversized_every = number("fault-oversized", v, 1, 1 << 30); },
     "precede every N-th reply with a line larger than any client buffer"},
    {nullptr, 0, "fault-seed", "N",
     [](Options& o, const char* v) { o.faults.seed = number("fault-seed", v, 0u, ~0u); },
     "seed of the drop decisions (default 1)"},
    {"Record and replay (instead of simulating; one connection port, --port)", 0, "record", "FILE",
     [](Options& o, const char* v) { o.record_path = v; },
     "proxy the controller at --upstream and write every line both ways,\n"
     "                              with its time, to FILE"},
    {nullptr, 0, "upstream", "IP:PORT", [](Options& o, const char* v) { o.upstream = v; },
     "the real controller that --record proxies"},
    {nullptr, 0, "replay", "FILE", [](Options& o, const char* v) { o.replay_path = v; },
     "answer each client as the session recorded in FILE; --speed-factor N\n"
     "                              makes its pauses N times shorter"},
};

constexpr int kHelpCode = 'h';
constexpr int kLongOnly = 1000;  // getopt codes of long-only options: kLongOnly + their index

}  // namespace

std::vector<std::string> known_models() {
    std::vector<std::string> names;
    for (const ModelName& model : kModelNames) names.emplace_back(model.text);
    return names;
}

void split_endpoint(const std::string& option, const std::string& text, std::string& ip, int& port) {
    const std::size_t colon = text.rfind(':');
    in_addr address{};
    if (colon == std::string::npos || ::inet_pton(AF_INET, text.substr(0, colon).c_str(), &address) != 1)
        throw UsageError("--" + option + ": expected IP:PORT such as 192.168.1.18:8080, got '" + text + "'");
    ip = text.substr(0, colon);
    port = number(option.c_str(), text.c_str() + colon + 1, 1, 65535);
}

std::string usage_text(const std::string& program) {
    std::ostringstream out;
    out << "Usage: " << program << " [options]\n"
        << "Simulates arm controllers: answers the command protocol on TCP, moves the arm in simulated time\n"
        << "and pushes its realtime state over UDP. Or records a session with a real controller, or\n"
        << "replays one. Stops on SIGINT or SIGTERM.\n";
    for (const Flag& flag : kFlags) {
        if (flag.heading) out << '\n' << flag.heading << ":\n";
        std::string names = flag.letter ? std::string("  -") + flag.letter + ", --" : "      --";
        names += flag.name;
        if (flag.value) names += std::string(" ") + flag.value;
        out << names << std::string(names.size() < 30 ? 30 - names.size() : 1, ' ') << flag.help << '\n';
    }
    out << "  -h, --help                  this text\n\nModels:";
    for (const std::string& name : known_models()) out << ' ' << name;
    out << "\nSuffixes: -B (no force sensor), -ZF (one-axis), -6F (six-axis), -6FB (integrated six-axis);\n"
        << "TAV72 and LUX62 come with -B only.\n";
    return out.str();
}

Options parse_options(int argc, char** argv, bool& help) {
    std::vector<option> long_options = {{"help", no_argument, nullptr, kHelpCode}};
    std::string letters = ":h";
    for (std::size_t i = 0; i < std::size(kFlags); ++i) {
        const Flag& flag = kFlags[i];
        const int code = flag.letter ? flag.letter : kLongOnly + static_cast<int>(i);
        long_options.push_back({flag.name, flag.value ? required_argument : no_argument, nullptr, code});
        if (flag.letter) letters += std::string(1, flag.letter) + (flag.value ? ":" : "");
    }
    long_options.push_back({nullptr, 0, nullptr, 0});

    Options options;
    help = false;
    optind = 1;
    opterr = 0;
    for (int c; (c = getopt_long(argc, argv, letters.c_str(), long_options.data(), nullptr)) != -1;) {
        if (c == kHelpCode) {
            help = true;
            return options;
        }
        if (c == ':') throw UsageError(std::string("option ") + argv[optind - 1] + " needs a value");
        const Flag* flag = nullptr;
        for (std::size_t i = 0; i < std::size(kFlags) && !flag; ++i)
            if (c == (kFlags[i].letter ? kFlags[i].letter : kLongOnly + static_cast<int>(i)))
                flag = &kFlags[i];
        if (!flag) throw UsageError(std::string("unknown option ") + argv[optind - 1]);
        flag->apply(options, optarg);
    }
    if (optind < argc) throw UsageError(std::string("unexpected argument '") + argv[optind] + "'");
    if (!find_arm_model(options.model))
        throw UsageError("--model: '" + options.model + "' is no model this simulator knows (see --help)");
    if (options.port > 0 && options.port + options.arms - 1 > 65535)
        throw UsageError("--port: too high for the arms");
    if (options.record_path.empty() != options.upstream.empty())
        throw UsageError("--record and --upstream go together");
    if (!options.record_path.empty() && !options.replay_path.empty())
        throw UsageError("--record and --replay exclude each other");
    if (!options.upstream.empty()) {
        std::string ip;
        int port = 0;
        split_endpoint("upstream", options.upstream, ip, port);
    }
    return options;
}

}  // namespace sim
