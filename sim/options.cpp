#include "options.h"

#include <getopt.h>

#include <charconv>
#include <sstream>

#include "arm_model.h"

namespace sim {

namespace {

enum Option {
    kHelp = 'h',
    kPort = 'p',
    kArms = 'a',
    kModel = 'm',
    kGeneration = 'g',
    kSpeed = 's',
    kBind = 1000,
    kLog,
    kPortFile,
    kPushIp,
    kPushPort,
    kPushCycle,
    kNoPush,
    kDelay,
    kDrop,
    kSplit,
    kSplitGap,
    kCloseAfter,
    kGarbage,
    kOversized,
    kSeed,
};

constexpr option kLongOptions[] = {
    {"help", no_argument, nullptr, kHelp},
    {"port", required_argument, nullptr, kPort},
    {"arms", required_argument, nullptr, kArms},
    {"model", required_argument, nullptr, kModel},
    {"generation", required_argument, nullptr, kGeneration},
    {"speed-factor", required_argument, nullptr, kSpeed},
    {"bind", required_argument, nullptr, kBind},
    {"log", required_argument, nullptr, kLog},
    {"port-file", required_argument, nullptr, kPortFile},
    {"push-ip", required_argument, nullptr, kPushIp},
    {"push-port", required_argument, nullptr, kPushPort},
    {"push-cycle", required_argument, nullptr, kPushCycle},
    {"no-push", no_argument, nullptr, kNoPush},
    {"fault-delay", required_argument, nullptr, kDelay},
    {"fault-drop", required_argument, nullptr, kDrop},
    {"fault-split", required_argument, nullptr, kSplit},
    {"fault-split-gap", required_argument, nullptr, kSplitGap},
    {"fault-close-after", required_argument, nullptr, kCloseAfter},
    {"fault-garbage", required_argument, nullptr, kGarbage},
    {"fault-oversized", required_argument, nullptr, kOversized},
    {"fault-seed", required_argument, nullptr, kSeed},
    {nullptr, 0, nullptr, 0},
};

template <class Number>
Number number(const char* name, const char* text, Number low, Number high) {
    Number value{};
    const char* end = text + std::char_traits<char>::length(text);
    auto [rest, error] = std::from_chars(text, end, value);
    if (error != std::errc() || rest != end || value < low || value > high) {
        std::ostringstream why;
        why << "--" << name << ": expected a number from " << low << " to " << high << ", got '" << text << "'";
        throw UsageError(why.str());
    }
    return value;
}

std::vector<int> positions(const char* text) {
    std::vector<int> cuts;
    std::string list = text;
    std::istringstream in(list);
    for (std::string item; std::getline(in, item, ',');) cuts.push_back(number("fault-split", item.c_str(), 1, 1 << 20));
    if (cuts.empty()) throw UsageError("--fault-split: expected byte positions such as 5,20");
    return cuts;
}

}  // namespace

std::vector<std::string> known_models() {
    std::vector<std::string> names;
    for (const ModelName& model : kModelNames) names.emplace_back(model.text);
    return names;
}

std::string usage_text(const std::string& program) {
    std::ostringstream out;
    out << "Usage: " << program << " [options]\n"
        << "Simulates arm controllers: answers the command protocol on TCP, moves the arm in simulated time\n"
        << "and pushes its realtime state over UDP.\n\n"
        << "Arms:\n"
        << "  -m, --model TEXT        product text, a model and a force-sensing suffix (default QM65-B)\n"
        << "                          models:";
    for (const std::string& name : known_models()) out << ' ' << name;
    out << "\n                          suffixes: -B (none), -ZF (one-axis), -6F (six-axis), -6FB (integrated)\n"
        << "  -g, --generation N      controller generation, 3 or 4 (default 3)\n"
        << "  -a, --arms N            arms on consecutive ports, 1 to 5 (default 1)\n"
        << "  -s, --speed-factor X    simulated seconds per second, 0.1 to 100 (default 1)\n"
        << "Network:\n"
        << "  -p, --port N            TCP port of the first arm; 0 picks free ports (default 8080)\n"
        << "      --bind ADDRESS      listening address (default 127.0.0.1). The protocol has no\n"
        << "                          authentication: anyone who reaches the address can move the arm\n"
        << "      --port-file FILE    write the first arm's port to FILE once listening\n"
        << "      --log FILE          log every line in and out to FILE ('-': standard error)\n"
        << "Realtime push (each arm's default; clients change it with set_realtime_push):\n"
        << "      --push-ip ADDRESS   destination address (default 127.0.0.1)\n"
        << "      --push-port N       destination port of the first arm, the others count up; 0 picks\n"
        << "                          free ports (default 8089)\n"
        << "      --push-cycle MS     push period in milliseconds, 1 (1 kHz) to 10000 (default 10)\n"
        << "      --no-push           start with the push disabled\n"
        << "Fault injection (off by default):\n"
        << "      --fault-delay MS         send every reply MS milliseconds late\n"
        << "      --fault-drop FRACTION    never send this fraction (0 to 1) of the replies\n"
        << "      --fault-split N[,N...]   cut every line into separate writes at these byte positions\n"
        << "      --fault-split-gap MS     pause between the pieces of a cut line (default 2)\n"
        << "      --fault-close-after N    close each connection after its N-th command\n"
        << "      --fault-garbage N        precede every N-th reply with a line that is not JSON\n"
        << "      --fault-oversized N      precede every N-th reply with a line larger than any client buffer\n"
        << "      --fault-seed N           seed of the drop decisions (default 1)\n"
        << "  -h, --help              this text\n";
    return out.str();
}

Options parse_options(int argc, char** argv, bool& help) {
    Options options;
    help = false;
    optind = 1;
    opterr = 0;
    int c;
    while ((c = getopt_long(argc, argv, ":hp:a:m:g:s:", kLongOptions, nullptr)) != -1) {
        switch (c) {
            case kHelp: help = true; return options;
            case kPort: options.port = number("port", optarg, 0, 65535); break;
            case kArms: options.arms = number("arms", optarg, 1, 5); break;
            case kModel: options.model = optarg; break;
            case kGeneration: options.generation = number("generation", optarg, 3, 4); break;
            case kSpeed: options.speed_factor = number("speed-factor", optarg, 0.1, 100.0); break;
            case kBind: options.bind = optarg; break;
            case kLog: options.log_path = optarg; break;
            case kPortFile: options.port_file = optarg; break;
            case kPushIp: options.push.ip = optarg; break;
            case kPushPort: options.push.port = number("push-port", optarg, 0, 65535); break;
            case kPushCycle: options.push.cycle_ms = number("push-cycle", optarg, 1, 10000); break;
            case kNoPush: options.push.enable = false; break;
            case kDelay: options.faults.reply_delay = std::chrono::milliseconds(number("fault-delay", optarg, 0, 600000)); break;
            case kDrop: options.faults.drop_replies = number("fault-drop", optarg, 0.0, 1.0); break;
            case kSplit: options.faults.split_at = positions(optarg); break;
            case kSplitGap: options.faults.split_gap = std::chrono::milliseconds(number("fault-split-gap", optarg, 0, 10000)); break;
            case kCloseAfter: options.faults.close_after = number("fault-close-after", optarg, 1, 1 << 30); break;
            case kGarbage: options.faults.garbage_every = number("fault-garbage", optarg, 1, 1 << 30); break;
            case kOversized: options.faults.oversized_every = number("fault-oversized", optarg, 1, 1 << 30); break;
            case kSeed: options.faults.seed = number("fault-seed", optarg, 0u, ~0u); break;
            case ':': throw UsageError(std::string("option ") + argv[optind - 1] + " needs a value");
            default: throw UsageError(std::string("unknown option ") + argv[optind - 1]);
        }
    }
    if (optind < argc) throw UsageError(std::string("unexpected argument '") + argv[optind] + "'");
    if (!find_arm_model(options.model))
        throw UsageError("--model: '" + options.model + "' is no model this simulator knows (see --help)");
    if (options.port > 0 && options.port + options.arms - 1 > 65535) throw UsageError("--port: too high for the arms");
    return options;
}

}  // namespace sim
