/** @file
 * Reads a scenario file for the boot. "simscenario steps FILE" prints what the boot has to do, one step per line (what,
 * name and value, separated by tabs); "simscenario driver FILE" prints the driver's part of the scenario. Everything is
 * checked before the first line is printed.
 */
#include <cctype>
#include <cstdio>
#include <exception>
#include <fstream>
#include <initializer_list>
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
    if (result.empty() || result.size() > 15 || result[0] == '-' || result.find_first_of(" '\"") != std::string::npos)
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

const json &list(const json &object, const char *key) {
    static const json empty = json::array();
    if (!object.contains(key))
        return empty;
    if (!object[key].is_array())
        refuse(key, "expected a list");
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

/** Radio interfaces are no ports here: they join their bridge when the radio comes up. */
void addBridge(Steps &steps, const json &bridge, const std::string &path) {
    checkKeys(bridge, path, {"name", "address", "ports"});
    if (!bridge.contains("name"))
        refuse(path, "a bridge needs a name");
    std::string bridgeName = name(bridge["name"], path + ".name");
    steps.add("bridge", bridgeName);
    if (bridge.contains("address"))
        steps.add("address", bridgeName, text(bridge["address"], path + ".address"));
    for (const json &port : list(bridge, "ports")) {
        std::string portName = name(port, path + ".ports");
        steps.add("port", portName);
        steps.add("member", bridgeName, portName);
    }
}

std::string steps(const json &scenario) {
    Steps result;
    std::size_t number = 0;
    for (const json &bridge : list(scenario, "bridges"))
        addBridge(result, bridge, "bridges[" + std::to_string(number++) + "]");
    for (const json &thread : list(scenario, "threads"))
        result.add("thread", name(thread, "threads"));
    return result.text();
}

std::string driverPart(json scenario) {
    scenario.erase("bridges");
    scenario.erase("threads");
    return scenario.dump(4) + "\n";
}

json readScenario(const char *file) {
    std::ifstream input(file);
    if (!input)
        throw std::runtime_error("cannot be read");
    json scenario = json::parse(input, nullptr, true, true);
    if (!scenario.is_object())
        throw std::runtime_error("expected an object");
    return scenario;
}

} // namespace
} // namespace wlsim

int main(int argc, char **argv) {
    std::string part = argc == 3 ? argv[1] : "";
    if (part != "steps" && part != "driver") {
        std::fputs("usage: simscenario {steps|driver} FILE\n", stderr);
        return 2;
    }
    try {
        auto scenario = wlsim::readScenario(argv[2]);
        std::string text = part == "steps" ? wlsim::steps(scenario) : wlsim::driverPart(scenario);
        std::fputs(text.c_str(), stdout);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s: %s\n", argv[2], error.what());
        return 1;
    }
    return 0;
}
