#include "host/config/document.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

#include "host/base/escape.h"

namespace wlhost {
namespace {

constexpr size_t kLargestFile = 1 << 20;
constexpr size_t kMostProblems = 50;

// Walks JSON that already parsed without errors, only to count lines: the parser keeps no positions.
class Scanner {
  public:
    explicit Scanner(const std::string &text) : text_(text) {}

    int find(const std::vector<Path::Step> &steps) {
        for (const Path::Step &step : steps) {
            char open = peek();
            int line = line_;
            if (open != (step.index < 0 ? '{' : '[') || !enter(step))
                return line;
        }
        return found_;
    }

  private:
    // Moves to the value of one member or element; false when there is none.
    bool enter(const Path::Step &step) {
        ++at_;
        for (int i = 0; peek() != '}' && peek() != ']'; ++i) {
            bool here = i == step.index;
            int line = line_;
            if (step.index < 0) {
                here = json::parse(skipString()) == step.key;
                peek();
                ++at_; // the colon
                peek();
            }
            if (here) {
                found_ = line;
                return true;
            }
            skipValue();
            if (peek() == ',')
                ++at_;
        }
        return false;
    }

    char next() {
        if (text_[at_] == '\n')
            ++line_;
        return text_[at_++];
    }

    // First character of the next token, behind blanks and comments.
    char peek() {
        while (at_ < text_.size()) {
            if (text_.compare(at_, 2, "//") == 0)
                at_ = std::min(text_.find('\n', at_), text_.size());
            else if (text_.compare(at_, 2, "/*") == 0)
                for (size_t end = text_.find("*/", at_ + 2) + 2; at_ < end;)
                    next();
            else if (std::isspace(static_cast<unsigned char>(text_[at_])))
                next();
            else
                return text_[at_];
        }
        return '\0';
    }

    std::string skipString() {
        peek();
        size_t start = at_++;
        while (text_[at_] != '"')
            at_ += text_[at_] == '\\' ? 2 : 1;
        ++at_;
        return text_.substr(start, at_ - start);
    }

    void skipValue() {
        int depth = 0;
        do {
            char c = peek();
            if (c == '"') {
                skipString();
                continue;
            }
            depth += c == '{' || c == '[' ? 1 : c == '}' || c == ']' ? -1 : 0;
            ++at_;
            if (depth == 0 && c != '}' && c != ']') // a number or word ends where the next token begins
                at_ = std::min(text_.find_first_of(",]}/ \t\r\n", at_), text_.size());
        } while (depth > 0);
    }

    const std::string &text_;
    size_t at_ = 0;
    int line_ = 1;
    int found_ = 1;
};

// Refuses a name that stands twice in one object: JSON readers silently keep the last one.
class TwiceCheck {
  public:
    bool operator()(int, json::parse_event_t event, json &value) {
        if (event == json::parse_event_t::object_start)
            seen_.emplace_back();
        else if (event == json::parse_event_t::object_end)
            seen_.pop_back();
        else if (event == json::parse_event_t::key && !seen_.back().insert(value.get<std::string>()).second)
            throw std::invalid_argument(value.dump() + " stands twice in one object");
        return true;
    }

  private:
    std::vector<std::set<std::string>> seen_;
};

// "[json.exception.parse_error.101] parse error at line 3, column 5: text" as "3:5: text".
std::string position(std::string message) {
    int line = 0, column = 0;
    size_t start = message.find("line ");
    if (start == std::string::npos || std::sscanf(message.c_str() + start, "line %d, column %d", &line, &column) != 2)
        return " " + message;
    message.erase(0, message.find(": ", start) + 2);
    return std::to_string(line) + ":" + std::to_string(column) + ": " + message;
}

} // namespace

Path Path::operator/(const std::string &key) const {
    Path longer = *this;
    longer.steps_.push_back({key, -1});
    return longer;
}

Path Path::operator/(size_t index) const {
    Path longer = *this;
    longer.steps_.push_back({{}, static_cast<int>(index)});
    return longer;
}

std::string Path::text() const {
    std::string text;
    for (const Step &step : steps_) {
        if (step.index >= 0)
            text += "[" + std::to_string(step.index) + "]";
        else
            text += (text.empty() ? "" : ".") + escapeBytes(step.key);
    }
    return text;
}

Document Document::parse(const std::string &file, const std::string &text) {
    try {
        return {file, text, json::parse(text, TwiceCheck{}, true, true)};
    } catch (const json::exception &error) {
        throw Failure(Status::kUsage, "", file + ":" + position(error.what()));
    } catch (const std::invalid_argument &error) {
        throw Failure(Status::kUsage, "", file + ": " + error.what());
    }
}

Document Document::load(const std::string &file) {
    std::ifstream stream(file);
    std::ostringstream text;
    if (!stream || !(text << stream.rdbuf()))
        throw Failure(Status::kUsage, "", file + ": cannot be read, or is empty");
    if (text.str().size() > kLargestFile)
        throw Failure(Status::kUsage, "", file + ": larger than 1 MiB");
    return parse(file, text.str());
}

int Document::lineOf(const Path &path) const { return Scanner(text).find(path.steps()); }

void Problems::add(const Path &path, const std::string &text) {
    std::string where = path.text();
    lines_.push_back(document_.file + ":" + std::to_string(document_.lineOf(path)) + ": " + where +
                     (where.empty() ? "" : ": ") + text);
}

void Problems::throwIfAny() const {
    if (lines_.empty())
        return;
    std::string all;
    for (size_t i = 0; i < lines_.size() && i < kMostProblems; ++i)
        all += (i ? "\n" : "") + lines_[i];
    if (lines_.size() > kMostProblems)
        all += "\n... and " + std::to_string(lines_.size() - kMostProblems) + " more";
    throw Failure(Status::kUsage, "", all);
}

} // namespace wlhost
