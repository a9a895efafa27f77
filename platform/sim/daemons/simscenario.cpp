/** @file
 * Reads the gateway's part of a scenario file and prints what the boot has to do, one step per line: what, name and
 * value, separated by tabs. Everything is checked before the first line is printed.
 */
#include <cctype>
#include <cstdio>
#include <exception>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace wlsim {
namespace {

using nlohmann::json;

[[noreturn]] void refuse(const std::string &path, const std::string &why) {
    throw std::runtime_error(path + ": " + why);
}

std::string text(const json &value, const std::string &path) {
    if (!value.is_string())
        refuse(path, "expected a text");
    auto result = value.get<std::string>();
    for (char c : result) {
        if (std::iscntrl(static_cast<unsigned char>(c)))
            refuse(path, "control characters are not allowed");
    }
    return result;
}

std::string name(const json &value, const std::string &path) {
    std::string result = text(value, path);
    if (result.empty() || result.size() > 15 || result.find_first_of(" /'\"") != std::string::npos)
        refuse(path, "\"" + result + "\" is no name of 1 to 15 characters");
    return result;
}

void checkKeys(const json &object, const std::string &path, std::initializer_list<const char *> known) {
    if (!object.is_object())
        refuse(path, "expected an object");
    for (const auto &[key, value] : object.items()) {
        bool found = false;
        for (const char *candidate : known)
            found = found || key == candidate;
        if (!found)
            refuse(path, "unknown key \"" + key + "\"");
    }
}

const json &list(const json &object, const char *key, const std::string &path) {
    static const json empty = json::array();
    if (!object.contains(key))
        return empty;
    if (!object[key].is_array())
        refuse(path + "." + key, "expected a list");
    return object[key];
}

class Steps {
  public:
    void add(const char *what, const std::string &name, const std::string &value = "") {
        m_text += std::string(what) + '\t' + name + '\t' + value + '\n';
    }
    const std::string &text() const { return m_text; }

  private:
    std::string m_text;
};

/** A port is made once, in whichever bridge it is named; a radio's interface joins its bridge when the radio comes up.
 */
void addBridge(Steps &steps, const json &bridge, const std::string &path) {
    checkKeys(bridge, path, {"name", "address", "ports"});
    if (!bridge.contains("name"))
        refuse(path, "a bridge needs a name");
    std::string bridgeName = name(bridge["name"], path + ".name");
    steps.add("bridge", bridgeName);
    if (bridge.contains("address"))
        steps.add("address", bridgeName, text(bridge["address"], path + ".address"));
    std::size_t number = 0;
    for (const json &port : list(bridge, "ports", path)) {
        std::string portName = name(port, path + ".ports[" + std::to_string(number++) + "]");
        steps.add("port", portName);
        steps.add("member", bridgeName, portName);
    }
}

void addVariables(Steps &steps, const json &variables) {
    if (!variables.is_object())
        refuse("nvram", "expected an object of texts");
    for (const auto &[key, value] : variables.items()) {
        if (key.empty() || key.find_first_of("= \t\n") != std::string::npos)
            refuse("nvram", "\"" + key + "\" is no variable name");
        steps.add("nvram", key, text(value, "nvram." + key));
    }
}

std::string readSteps(const char *file) {
    std::ifstream input(file);
    if (!input)
        throw std::runtime_error("cannot be read");
    json scenario = json::parse(input, nullptr, true, true);
    if (!scenario.is_object())
        refuse("scenario", "expected an object");
    Steps steps;
    std::size_t number = 0;
    for (const json &bridge : list(scenario, "bridges", "scenario"))
        addBridge(steps, bridge, "bridges[" + std::to_string(number++) + "]");
    if (scenario.contains("nvram"))
        addVariables(steps, scenario["nvram"]);
    number = 0;
    for (const json &thread : list(scenario, "threads", "scenario"))
        steps.add("thread", name(thread, "threads[" + std::to_string(number++) + "]"));
    return steps.text();
}

} // namespace
} // namespace wlsim

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fputs("usage: simscenario FILE\n", stderr);
        return 2;
    }
    try {
        std::fputs(wlsim::readSteps(argv[1]).c_str(), stdout);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
    return 0;
}
