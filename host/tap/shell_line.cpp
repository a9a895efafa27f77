#include "host/tap/shell_line.h"

#include <cctype>
#include <cstring>

namespace wlhost::tap {
namespace {

class Reader {
  public:
    explicit Reader(std::string_view line) : line_(line) { result_.stages.emplace_back(); }

    std::optional<ShellLine> read() {
        while (skipBlanks(), at_ < line_.size()) {
            if (result_.background || !readOne())
                return std::nullopt;
        }
        for (const auto &stage : result_.stages)
            if (stage.empty())
                return std::nullopt;
        return std::move(result_);
    }

  private:
    char here(size_t ahead = 0) const { return at_ + ahead < line_.size() ? line_[at_ + ahead] : '\0'; }
    void skipBlanks() {
        while (here() == ' ' || here() == '\t')
            ++at_;
    }

    bool readOne() {
        if (here() == '|') {
            result_.stages.emplace_back();
            return line_[at_++] == '|' && here() != '|';
        }
        if (here() == '&' && here(1) != '>') {
            ++at_;
            result_.background = true;
            return true;
        }
        size_t digits = at_;
        while (digits < line_.size() && std::isdigit(static_cast<unsigned char>(line_[digits])))
            ++digits;
        if (here() == '&' || (digits < line_.size() && (line_[digits] == '>' || line_[digits] == '<'))) {
            at_ = here() == '&' ? at_ + 1 : digits;
            return readRedirect();
        }
        std::string word;
        if (!readWord(&word))
            return false;
        result_.stages.back().push_back(word);
        return true;
    }

    bool readRedirect() {
        Redirect redirect{};
        redirect.reads = line_[at_++] == '<';
        redirect.appends = here() == '>';
        at_ += redirect.appends;
        if (here() == '&') { // one descriptor takes another's place
            ++at_;
            return std::isdigit(static_cast<unsigned char>(here())) && readWord(&redirect.file);
        }
        skipBlanks();
        redirect.at = at_;
        if (!readWord(&redirect.file) || redirect.file.empty())
            return false;
        redirect.length = at_ - redirect.at;
        result_.redirects.push_back(redirect);
        return true;
    }

    // False at what only a whole shell can read.
    bool readWord(std::string *word) {
        for (char quote = '\0'; at_ < line_.size(); ++at_) {
            const char c = line_[at_];
            const bool closes = quote && c == quote, opens = !quote && (c == '\'' || c == '"');
            if (closes || opens) {
                quote = opens ? c : '\0';
                continue;
            }
            if (!quote && std::strchr(" \t|&<>", c))
                break;
            if (quote != '\'' && std::strchr(quote ? "`$\n\\" : "`$\n\\;(){}", c))
                return false;
            *word += c;
        }
        return true;
    }

    std::string_view line_;
    size_t at_ = 0;
    ShellLine result_;
};

} // namespace

std::optional<ShellLine> parseLine(std::string_view line) { return Reader(line).read(); }

std::string quoted(const std::string &word) {
    constexpr const char *kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_./:=,@%+";
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos)
        return word;
    std::string text = "'";
    for (char c : word)
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

std::string quotedLine(const std::vector<std::string> &words) {
    std::string line;
    for (const std::string &word : words)
        line += (line.empty() ? "" : " ") + quoted(word);
    return line;
}

} // namespace wlhost::tap
