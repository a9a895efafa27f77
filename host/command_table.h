// Every command of wlhost, declared once: the command line, its help and completion, the host's dispatch and the tables
// that a person reads come from these rows.
#pragma once

#include <string>
#include <vector>

#include "host/base/failure.h"
#include "host/show/tables.h"

namespace wlhost {

class Host;
struct Call;

// What the value of an option is; also what the shell completes it with.
enum class Value {
    kFlag, // no value: true when the option is there
    kText,
    kNumber, // from 1 on
    kItems,  // texts joined by commas
    kFile,
    kRadio,
    kInterface,
    kStation,
    kTexts,    // any number of them
    kStations, // likewise
    kColumn,   // of the command's table
};

struct Option {
    const char *name; // "RADIO" has its place in the line, "--all" goes by its name
    const char *key;  // of the argument in a request
    Value value;
    const char *about;
    bool required = false;
    std::vector<std::string> words = {}; // all that the value may be
    int most = 0;                        // of a number; 0 for no limit

    bool isPlaced() const { return name[0] != '-'; }
};

struct Command {
    const char *name; // "wps pin" is pin of the group wps
    const char *about;
    std::vector<Option> options;
    // What a running host does and gives back; null when the command needs no host.
    json (*answer)(Host &host, const json &args);
    // The result as a person reads it, most often a table of these columns; null when `run` prints by itself.
    std::string (*show)(const json &result, const std::vector<Column> &columns);
    std::vector<Column> columns;
    // Where the command is typed; most ask the host.
    Status (*run)(const Call &call);
    // What the connection stays open for behind the answer to these arguments; null, or null for them, when it does
    // not.
    const char *(*follows)(const json &args) = nullptr;
    // The exit status that a result stands for, where not every result means that all is well.
    Status (*meaning)(const json &result) = nullptr;
};

// A command as it was typed.
struct Call {
    const Command *command = nullptr;
    json args = json::object(); // those given, by key
    std::string socket;
    int timeout = 0; // seconds
    bool asJson = false;
};

const std::vector<Command> &commands();
// Options of every command.
const std::vector<Option> &commonOptions();
const Command *findCommand(const std::string &name);

// What commands such as "wps pin" have in common.
struct Group {
    const char *name, *about;
};
const std::vector<Group> &groups();
// First words of the commands, or with the name of a group the words behind it.
std::vector<std::string> namesIn(const std::string &group);

} // namespace wlhost
