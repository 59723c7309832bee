#include "options.h"

#include <charconv>
#include <stdexcept>

#include "udp_socket.h"

namespace ry::emulator {
namespace {

template <typename T>
T number(const std::string& option, const std::string& text) {
    T value{};
    const char* end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value);
    if (ec != std::errc() || ptr != end) {
        throw std::invalid_argument(option + " needs a number, not \"" + text + "\"");
    }
    return value;
}

}  // namespace

const char* usage_text() {
    return "usage: ry-camera-emulator [options]\n"
           "  --address IP          address of the first camera (default 127.0.0.1)\n"
           "  --count N             number of cameras, on consecutive addresses (default 1)\n"
           "  --model NAME          model name (GigE_Connect: the older register-driven model)\n"
           "  --serial TEXT         serial number of the first camera\n"
           "  --pixel-format NAME   Mono8, Mono10, ..., YUV444Packed (default Mono8)\n"
           "  --width N --height N  image size (default 640 x 480)\n"
           "  --fps X               frame rate, 0 = as fast as possible (default 30)\n"
           "  --xml FORM            zip | plain | utf8-bom | utf16-bom (default zip)\n"
           "  --drop FRACTION       fraction of stream packets dropped on first send\n"
           "  --no-resend           ignore packet resend requests\n"
           "  --trigger-ext         name the external trigger entry \"Ext\"\n"
           "  --bind-any            bind 0.0.0.0 (one camera alone in its network namespace)\n"
           "  --port N              control port (default 3956)\n"
           "  --feature NAME=VARIANT present a feature as missing, read-only, not-available or\n"
           "                        integer (a Float described as an Integer)\n"
           "  --segmentation-trains hand the kernel trains of packets (benchmarks of receivers\n"
           "                        that take them whole; a capture sees oversized datagrams)\n";
}

ProgramOptions parse_options(const std::vector<std::string>& args) {
    ProgramOptions options;
    CameraConfig& c = options.first;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& name = args[i];
        auto value = [&]() -> const std::string& {
            if (i + 1 >= args.size()) {
                throw std::invalid_argument(name + " needs a value");
            }
            return args[++i];
        };
        if (name == "--help" || name == "-h") {
            options.help = true;
        } else if (name == "--address") {
            c.address = value();
            if (!parse_ipv4(c.address)) {
                throw std::invalid_argument("--address needs an IPv4 address, not \"" + c.address +
                                            "\"");
            }
        } else if (name == "--count") {
            options.count = number<int>(name, value());
            if (options.count < 1 || options.count > 250) {
                throw std::invalid_argument("--count must be 1..250");
            }
        } else if (name == "--model") {
            c.model = value();
        } else if (name == "--serial") {
            c.serial = value();
        } else if (name == "--pixel-format") {
            c.pixel_format = value();
        } else if (name == "--width") {
            c.width = number<std::uint32_t>(name, value());
        } else if (name == "--height") {
            c.height = number<std::uint32_t>(name, value());
        } else if (name == "--fps") {
            c.fps = number<double>(name, value());
        } else if (name == "--xml") {
            const auto form = xml_form_from_name(value());
            if (!form) {
                throw std::invalid_argument("--xml must be zip, plain, utf8-bom or utf16-bom");
            }
            c.xml_form = *form;
        } else if (name == "--drop") {
            c.faults.drop_fraction = number<double>(name, value());
            if (c.faults.drop_fraction < 0 || c.faults.drop_fraction > 1) {
                throw std::invalid_argument("--drop must be a fraction between 0 and 1");
            }
        } else if (name == "--no-resend") {
            c.faults.ignore_resend = true;
        } else if (name == "--trigger-ext") {
            c.trigger_entry_ext = true;
        } else if (name == "--bind-any") {
            c.bind_any = true;
        } else if (name == "--feature") {
            const std::string setting = value();
            const auto equals = setting.find('=');
            const std::string variant =
                equals == std::string::npos ? "" : setting.substr(equals + 1);
            static const std::map<std::string, FeatureVariant> kVariants = {
                {"missing", FeatureVariant::Missing},
                {"read-only", FeatureVariant::ReadOnly},
                {"not-available", FeatureVariant::NotAvailable},
                {"integer", FeatureVariant::AsInteger}};
            const auto found = kVariants.find(variant);
            if (equals == 0 || found == kVariants.end()) {
                throw std::invalid_argument(
                    "--feature takes NAME=missing, NAME=read-only, NAME=not-available or "
                    "NAME=integer");
            }
            c.feature_variants[setting.substr(0, equals)] = found->second;
        } else if (name == "--segmentation-trains") {
            c.segmentation_trains = true;
        } else if (name == "--port") {
            c.gvcp_port = number<std::uint16_t>(name, value());
        } else {
            throw std::invalid_argument("unknown option " + name);
        }
    }
    if (c.bind_any && options.count > 1) {
        throw std::invalid_argument("--bind-any serves a single camera");
    }
    return options;
}

std::vector<CameraConfig> camera_configs(const ProgramOptions& options) {
    std::vector<CameraConfig> configs;
    const std::uint32_t first_ip = *parse_ipv4(options.first.address);
    for (int i = 0; i < options.count; ++i) {
        CameraConfig config = options.first;
        config.address = format_ipv4(first_ip + static_cast<std::uint32_t>(i));
        if (i > 0) {
            config.serial.append(1, '-').append(std::to_string(i + 1));
        }
        configs.push_back(config);
    }
    return configs;
}

}  // namespace ry::emulator
