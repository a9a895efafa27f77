#include "host/config/document.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "host/base/escape.h"
#include "host/base/regular_file.h"
#include "host/base/word_lists.h"
#include "host/config/fields.h"

namespace wlhost {
namespace {

constexpr size_t kLargestFile = 1 << 20;
constexpr size_t kDeepest = 64;

// The parser keeps no positions: it reads through this iterator, which tells how far it has come.
struct Position {
    const char *at;
    int line = 1;
};
class Watched {
  public:
    // NOLINTBEGIN(readability-identifier-naming): the names that std::iterator_traits looks for
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = const char &;
    // NOLINTEND(readability-identifier-naming)

    Watched(const char *at, Position &position) : at_(at), position_(&position) {}
    const char &operator*() const { return *at_; }
    Watched &operator++() {
        position_->line += *at_ == '\n';
        position_->at = ++at_;
        return *this;
    }
    bool operator==(const Watched &other) const { return at_ == other.at_; }
    bool operator!=(const Watched &other) const { return at_ != other.at_; }

  private:
    const char *at_;
    Position *position_;
};

// Follows the parser: notes lines, and refuses what it would take without a word (a name that stands twice, of which
// the last one counts) or would take the stack for.
class Reader {
  public:
    Reader(const std::string &file, const std::string &text) : file_(escapeBytes(file)), text_(text) {}

    Document read(const std::string &file) {
        auto follow = [this](int, json::parse_event_t event, json &value) { return take(event, value), true; };
        const char *end = text_.data() + text_.size();
        try {
            json root = json::parse(Watched(text_.data(), position_), Watched(end, position_), follow, true, true);
            checkComments();
            return {file, std::move(root), std::move(lines_)};
        } catch (const json::parse_error &error) {
            refuseSyntax(error);
        } catch (const json::out_of_range &) {
            refuse(position_.line, " a number that is too large");
        }
    }

  private:
    struct Open {
        size_t number;
        int elements; // so far; negative in an object
    };

    [[noreturn]] void refuse(int line, const std::string &text) const {
        json row = {{"path", ""}, {"line", line}, {"value", nullptr}, {"allowed", nullptr}};
        throw Failure(Status::kUsage, "", file_ + ":" + std::to_string(line) + ":" + text, "",
                      {{"errors", json::array({row})}});
    }

    void take(json::parse_event_t event, const json &value) {
        using Event = json::parse_event_t;
        if (event == Event::key)
            takeName(value.get<std::string>());
        else if (event == Event::object_end || event == Event::array_end)
            open_.pop_back();
        else
            takeValue(event, value);
    }

    void takeName(const std::string &name) {
        name_ = name;
        bool added;
        std::tie(current_, added) = lines_.add(open_.back().number, {name, -1}, position_.line);
        if (!added)
            refuse(position_.line, " " + inQuotes(escapeBytes(name)) + " stands twice in one object, first in line " +
                                       std::to_string(lines_.at(current_)));
    }

    void takeValue(json::parse_event_t event, const json &value) {
        if (!open_.empty() && open_.back().elements >= 0) {
            // The parser knows the end of a number by the character behind it.
            int ahead = event == json::parse_event_t::value && value.is_number() && position_.at[-1] == '\n';
            current_ = lines_.add(open_.back().number, {{}, open_.back().elements++}, position_.line - ahead).first;
        }
        if (event == json::parse_event_t::value)
            return;
        if (open_.size() == kDeepest)
            refuse(position_.line, " more than " + std::to_string(kDeepest) + " brackets inside each other");
        open_.push_back({current_, event == json::parse_event_t::array_start ? 0 : -1});
    }

    // "[json.exception.parse_error.101] parse error at line 3, column 5: text; last read: '...'" as "3:5: text", and
    // what stands there in a form that can be shown.
    [[noreturn]] void refuseSyntax(const json::parse_error &error) const {
        std::string message = error.what();
        int line = 1, column = 1;
        size_t start = std::min(message.find("line "), message.size());
        if (std::sscanf(message.c_str() + start, "line %d, column %d", &line, &column) == 2)
            message.erase(0, message.find(": ", start) + 2);
        message.erase(std::min(message.find("; last read: "), message.size()));
        std::string near = excerpt(error.byte);
        refuse(line, std::to_string(column) + ": " + message + (near.empty() ? "" : "; near '" + near + "'"));
    }

    // The end of what the parser had read, in its line and at most back to a quotation mark: what stands before that
    // may be the value of a secret.
    std::string excerpt(size_t end) const {
        constexpr size_t kLongest = 24;
        end = std::min(end, text_.size());
        if (end == 0 || isSecretName(name_))
            return "";
        end -= text_[end - 1] == '\n';
        size_t start = end;
        while (start > 0 && end - start < kLongest && text_[start - 1] != '\n')
            if (text_[--start] == '"' && start + 1 < end)
                break;
        return escapeBytes(text_.substr(start, end - start));
    }

    // Strings are UTF-8 by now; nobody looked at the comments.
    void checkComments() const {
        size_t good = wellFormedLength(text_);
        if (good == text_.size())
            return;
        auto line = 1 + std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(good), '\n');
        refuse(static_cast<int>(line), " '" + escapeBytes(text_.substr(good, 1)) + "' in a comment is not UTF-8");
    }

    std::string file_;
    const std::string &text_;
    Position position_{text_.data()};
    Lines lines_;
    std::vector<Open> open_;
    size_t current_ = 0; // number of the value that is read
    std::string name_;
};

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
    constexpr size_t kLongest = 64; // of a name, which may be anything
    std::string text;
    for (const Step &step : steps_) {
        if (step.index >= 0)
            text += "[" + std::to_string(step.index) + "]";
        else
            text += (text.empty() ? "" : ".") + escapeBytes(step.key.substr(0, kLongest)) +
                    (step.key.size() > kLongest ? "..." : "");
    }
    return text;
}

std::pair<size_t, bool> Lines::add(size_t parent, const Path::Step &step, int line) {
    auto [place, added] = numbers_.try_emplace({parent, step.index, step.key}, lines_.size());
    if (added)
        lines_.push_back(line);
    return {place->second, added};
}

int Lines::find(const Path &path) const {
    size_t number = 0;
    for (const Path::Step &step : path.steps()) {
        auto place = numbers_.find({number, step.index, step.key});
        if (place == numbers_.end())
            break;
        number = place->second;
    }
    return lines_[number];
}

Document Document::parse(const std::string &file, const std::string &text) { return Reader(file, text).read(file); }

Document Document::load(const std::string &file) { return parse(file, readRegularFile(file, kLargestFile)); }

} // namespace wlhost
