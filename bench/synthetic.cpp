#include "synthetic.hpp"

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace zelk::bench {
namespace {

constexpr int kNodes = 50;
constexpr std::array<const char*, kSignalsPerMessage> kQuantities = {
    "EngineSpeed",   "EngineTorque",  "OilTemperature", "WheelSpeed",
    "BrakePressure", "SteeringAngle", "YawRate",        "Acceleration",
    "SupplyVoltage", "ClutchState",   "GearPosition",   "CounterValue"};
constexpr std::array<const char*, kSignalsPerMessage> kUnits = {
    "rpm", "Nm", "degC", "km/h", "bar", "deg", "deg/s", "m/s^2", "V", "", "", ""};

/// Appends formatted text.
template <typename... Arguments>
void put(std::string& text, const char* format, Arguments... arguments) {
  std::array<char, 512> line{};
  const int size = std::snprintf(line.data(), line.size(), format, arguments...);
  text.append(line.data(), static_cast<std::size_t>(size));
}

void put_head(std::string& text) {
  text += "VERSION \"synthetic\"\n\n\nNS_ : \n\tCM_\n\tBA_DEF_\n\tBA_\n\tVAL_\n\nBS_:\n\nBU_:";
  for (int node = 0; node < kNodes; ++node) put(text, " Node%02d", node);
  text += "\n\n";
}

void put_signal(std::string& text, int message, int signal) {
  const auto index = static_cast<std::size_t>(signal);
  const int length = 5;
  const bool is_motorola = signal % 3 == 0;
  const int start = is_motorola ? signal * 5 / 8 * 8 + 7 : signal * 5;
  put(text, " SG_ %s_%02d : %d|%d@%d%c (%g,%d) [%d|%g] \"%s\"  Node%02d", kQuantities[index],
      signal, start, length, is_motorola ? 0 : 1, signal % 2 ? '-' : '+', 0.05 * (signal + 1),
      signal % 4 ? 0 : -40, -1000 * (signal % 2), 1000.5 + signal, kUnits[index],
      (message + signal) % kNodes);
  if (signal % 2) put(text, ",Node%02d", (message + signal + 7) % kNodes);
  text += '\n';
}

void put_messages(std::string& text, int messages) {
  for (int message = 0; message < messages; ++message) {
    put(text, "BO_ %u Message_%05d: 8 Node%02d\n",
        0x80000000U + static_cast<unsigned>(message) * 37U, message, message % kNodes);
    for (int signal = 0; signal < kSignalsPerMessage; ++signal) put_signal(text, message, signal);
    text += '\n';
  }
}

/// One statement for each message, `for_message`, and one for each of its signals, `for_signal`.
template <typename ForMessage, typename ForSignal>
void put_statements(std::string& text, int messages, ForMessage for_message, ForSignal for_signal) {
  for (int message = 0; message < messages; ++message) {
    const unsigned id = 0x80000000U + static_cast<unsigned>(message) * 37U;
    for_message(text, id);
    for (int signal = 0; signal < kSignalsPerMessage; ++signal) for_signal(text, id, signal);
  }
}

void put_comments(std::string& text, int messages) {
  put_statements(
      text, messages,
      [](std::string& to, unsigned id) {
        put(to, "CM_ BO_ %u \"Sent in a cycle of 10 ms while the ignition is on.\";\n", id);
      },
      [](std::string& to, unsigned id, int signal) {
        const char* quantity = kQuantities[static_cast<std::size_t>(signal)];
        put(to, "CM_ SG_ %u %s_%02d \"%s as measured.\";\n", id, quantity, signal, quantity);
      });
}

void put_attributes(std::string& text, int messages) {
  text +=
      "BA_DEF_ BO_ \"GenMsgCycleTime\" INT 0 65535;\nBA_DEF_ SG_ \"GenSigStartValue\" FLOAT 0 "
      "100000;\n"
      "BA_DEF_DEF_ \"GenMsgCycleTime\" 0;\nBA_DEF_DEF_ \"GenSigStartValue\" 0;\n";
  put_statements(
      text, messages,
      [](std::string& to, unsigned id) { put(to, "BA_ \"GenMsgCycleTime\" BO_ %u 10;\n", id); },
      [](std::string& to, unsigned id, int signal) {
        put(to, "BA_ \"GenSigStartValue\" SG_ %u %s_%02d %d;\n", id,
            kQuantities[static_cast<std::size_t>(signal)], signal, signal * 3);
      });
}

void put_descriptions(std::string& text, int messages) {
  put_statements(
      text, messages, [](std::string&, unsigned) {},
      [](std::string& to, unsigned id, int signal) {
        if (signal % 4 != 3) return;
        put(to,
            "VAL_ %u %s_%02d 29 \"Initialisation\" 30 \"Sensor fault\" 31 \"Signal not available\" "
            ";\n",
            id, kQuantities[static_cast<std::size_t>(signal)], signal);
      });
}

}  // namespace

std::string synthetic_database(int messages) {
  std::string text;
  put_head(text);
  put_messages(text, messages);
  put_comments(text, messages);
  put_attributes(text, messages);
  put_descriptions(text, messages);
  return text;
}

TemporaryFile::TemporaryFile(const std::string& name, const std::string& content)
    : path_((std::filesystem::temp_directory_path() / name).string()) {
  std::ofstream(path_, std::ios::binary) << content;
}

TemporaryFile::~TemporaryFile() {
  std::error_code ignored;
  std::filesystem::remove(path_, ignored);
}

}  // namespace zelk::bench
