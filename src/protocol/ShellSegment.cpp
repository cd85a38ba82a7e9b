// A shell command line cut into simple commands and their words, read the way the shell reads it.
#include "protocol/ShellSegment.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace orvo {
namespace {

// NOLINTNEXTLINE(readability-identifier-naming): std::string_view::npos, under its own name
constexpr std::size_t npos = std::string_view::npos;

// The index of the ")" that closes a substitution whose body starts at `from`, or npos when
// nothing closes it. Quotes, backquotes and inner substitutions are skipped; the stack is
// explicit so that hostile nesting costs heap, not call stack.
std::size_t closingParen(std::string_view text, std::size_t from) {
    struct Frame {
        char kind;  // '(' a substitution body, '"' a double-quoted string, '`' a backquote
        std::size_t openParens;
    };
    std::vector<Frame> stack{{'(', 0}};
    std::size_t i = from;
    while (i < text.size()) {
        const char c = text[i];
        if (c == '\\') {
            i += 2;
            continue;
        }
        const char kind = stack.back().kind;
        if (kind == '`') {
            if (c == '`') {
                stack.pop_back();
            }
            ++i;
            continue;
        }
        if (c == '$' && i + 1 < text.size() && text[i + 1] == '(') {
            stack.push_back({'(', 0});
            i += 2;
            continue;
        }
        if (c == '`') {
            stack.push_back({'`', 0});
        } else if (kind == '"') {
            if (c == '"') {
                stack.pop_back();
            }
        } else if (c == '\'') {
            const std::size_t close = text.find('\'', i + 1);
            i = close == npos ? text.size() : close + 1;
            continue;
        } else if (c == '"') {
            stack.push_back({'"', 0});
        } else if (c == '(') {
            ++stack.back().openParens;
        } else if (c == ')') {
            if (stack.back().openParens > 0) {
                --stack.back().openParens;
            } else {
                stack.pop_back();
                if (stack.empty()) {
                    return i;
                }
            }
        }
        ++i;
    }
    return npos;
}

std::size_t closingBackquote(std::string_view text, std::size_t from) {
    for (std::size_t i = from; i < text.size(); ++i) {
        if (text[i] == '\\') {
            ++i;
        } else if (text[i] == '`') {
            return i;
        }
    }
    return npos;
}

// The substitutions of an unquoted here-document body, where only $( ) and backquotes act.
void collectSubstitutions(std::string_view body, std::vector<std::string_view>& out) {
    std::size_t i = 0;
    while (i < body.size()) {
        const char c = body[i];
        std::size_t from = npos;
        std::size_t close = npos;
        if (c == '\\') {
            i += 2;
            continue;
        }
        if (c == '$' && i + 1 < body.size() && body[i + 1] == '(') {
            from = i + 2;
            close = closingParen(body, from);
        } else if (c == '`') {
            from = i + 1;
            close = closingBackquote(body, from);
        } else {
            ++i;
            continue;
        }
        const std::size_t end = close == npos ? body.size() : close;
        out.push_back(body.substr(from, end - from));
        i = end + 1;
    }
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == npos;
}

// `2` in `2>&1`, or `{fd}` in `{fd}>file`: the descriptor a redirection acts on.
bool isDescriptor(std::string_view word) {
    if (word.size() > 2 && word.front() == '{' && word.back() == '}') {
        return true;
    }
    return !word.empty() && std::ranges::all_of(word, [](char c) { return c >= '0' && c <= '9'; });
}

class Lexer {
public:
    explicit Lexer(std::string_view text) : text_(text) {}

    std::vector<ShellSegment> run() {
        while (pos_ < text_.size()) {
            step();
        }
        endSegment(text_.size());
        return std::move(segments_);
    }

private:
    // What the next word is, when a redirection operator has just been read.
    enum class Target { none, file, hereDocument, hereString };

    struct PendingHereDocument {
        std::size_t segment;
        std::string delimiter;
        bool stripTabs;
        bool quoted;  // a quoted delimiter turns off substitution in the body
    };

    char peek(std::size_t ahead) const {
        return pos_ + ahead < text_.size() ? text_[pos_ + ahead] : '\0';
    }

    void step() {
        const char c = text_[pos_];
        switch (c) {
            case ' ':
            case '\t':
            case '\r':
                endWord();
                ++pos_;
                return;
            case '\n':
                separate();
                readHereDocuments();
                return;
            case ';':
            case ')':
                separate();
                return;
            case '|':
                pipe();
                return;
            case '(':
                if (inWord_ && !wordQuoted_ && word_.ends_with('=')) {
                    arrayValue();  // name=(a b c)
                } else {
                    separate();
                }
                return;
            case '&':
                if (peek(1) == '>') {
                    redirection();
                } else {
                    separate();
                }
                return;
            case '<':
            case '>':
                if (peek(1) == '(') {
                    endWord();
                    substitution(2);
                } else {
                    redirection();
                }
                return;
            case '#':
                if (!inWord_) {
                    const std::size_t end = text_.find('\n', pos_);
                    pos_ = end == npos ? text_.size() : end;
                    return;
                }
                break;
            case '\'': {
                const std::size_t close = text_.find('\'', pos_ + 1);
                const std::size_t end = close == npos ? text_.size() : close;
                startQuotedWord();
                word_.append(text_.substr(pos_ + 1, end - pos_ - 1));
                pos_ = close == npos ? end : close + 1;
                return;
            }
            case '"':
                ++pos_;
                doubleQuoted();
                return;
            case '\\':
                escaped();
                return;
            case '`':
                backquoted();
                return;
            case '$':
                if (peek(1) == '(') {
                    substitution(2);
                    return;
                }
                if (peek(1) == '\'') {
                    ansiQuoted();
                    return;
                }
                if (peek(1) == '"') {
                    pos_ += 2;
                    doubleQuoted();
                    return;
                }
                break;
            default:
                break;
        }
        append(c);
        ++pos_;
    }

    void append(char c) {
        word_.push_back(c);
        inWord_ = true;
    }

    void startQuotedWord() {
        inWord_ = true;
        wordQuoted_ = true;
    }

    // Called at the opening quote's successor.
    void doubleQuoted() {
        startQuotedWord();
        while (pos_ < text_.size()) {
            const char c = text_[pos_];
            if (c == '"') {
                ++pos_;
                return;
            }
            if (c == '\\' && pos_ + 1 < text_.size()) {
                const char next = text_[pos_ + 1];
                if (next != '\n') {
                    if (std::strchr("$`\"\\", next) == nullptr) {
                        word_.push_back('\\');
                    }
                    word_.push_back(next);
                }
                pos_ += 2;
            } else if (c == '$' && peek(1) == '(') {
                substitution(2);
            } else if (c == '`') {
                backquoted();
            } else {
                word_.push_back(c);
                ++pos_;
            }
        }
    }

    // $'...', where backslash escapes are decoded.
    void ansiQuoted() {
        startQuotedWord();
        pos_ += 2;
        while (pos_ < text_.size()) {
            const char c = text_[pos_];
            if (c == '\'') {
                ++pos_;
                return;
            }
            if (c != '\\' || pos_ + 1 >= text_.size()) {
                word_.push_back(c);
                ++pos_;
                continue;
            }
            const char next = text_[pos_ + 1];
            switch (next) {
                case 'n':
                    word_.push_back('\n');
                    break;
                case 't':
                    word_.push_back('\t');
                    break;
                case 'r':
                    word_.push_back('\r');
                    break;
                case '\\':
                case '\'':
                case '"':
                case '?':
                    word_.push_back(next);
                    break;
                default:
                    word_.push_back('\\');
                    word_.push_back(next);
                    break;
            }
            pos_ += 2;
        }
    }

    void escaped() {
        if (pos_ + 1 >= text_.size()) {
            ++pos_;
            return;
        }
        const char next = text_[pos_ + 1];
        if (next != '\n') {  // a backslash before a newline joins the lines
            startQuotedWord();
            word_.push_back(next);
        }
        pos_ += 2;
    }

    // At "$(", "<(" or ">(": the body is recorded and the whole kept in the word as written.
    void substitution(std::size_t opener) {
        const std::size_t from = pos_ + opener;
        const std::size_t close = closingParen(text_, from);
        const std::size_t end = close == npos ? text_.size() : close;
        current_.substitutions.push_back(text_.substr(from, end - from));
        const std::size_t stop = close == npos ? end : close + 1;
        word_.append(text_.substr(pos_, stop - pos_));
        inWord_ = true;
        pos_ = stop;
    }

    void backquoted() {
        const std::size_t close = closingBackquote(text_, pos_ + 1);
        const std::size_t end = close == npos ? text_.size() : close;
        current_.substitutions.push_back(text_.substr(pos_ + 1, end - pos_ - 1));
        const std::size_t stop = close == npos ? end : close + 1;
        word_.append(text_.substr(pos_, stop - pos_));
        inWord_ = true;
        pos_ = stop;
    }

    void arrayValue() {
        const std::size_t close = closingParen(text_, pos_ + 1);
        const std::size_t stop = close == npos ? text_.size() : close + 1;
        word_.append(text_.substr(pos_, stop - pos_));
        pos_ = stop;
    }

    void redirection() {
        if (inWord_ && !wordQuoted_ && isDescriptor(word_)) {
            resetWord();
        } else {
            endWord();
        }
        Target target = Target::file;
        const char c = text_[pos_];
        const char next = peek(1);
        if (c == '&') {
            pos_ += peek(2) == '>' ? 3 : 2;  // &> and &>>
        } else if (c == '<' && next == '<' && peek(2) == '<') {
            target = Target::hereString;
            pos_ += 3;
        } else if (c == '<' && next == '<') {
            target = Target::hereDocument;
            stripTabs_ = peek(2) == '-';
            pos_ += stripTabs_ ? 3 : 2;
        } else if ((c == '<' && (next == '&' || next == '>')) ||
                   (c == '>' && (next == '>' || next == '&' || next == '|'))) {
            pos_ += 2;
        } else {
            pos_ += 1;
        }
        target_ = target;
    }

    void resetWord() {
        word_.clear();
        inWord_ = false;
        wordQuoted_ = false;
    }

    void endWord() {
        if (!inWord_) {
            return;
        }
        switch (target_) {
            case Target::none:
                current_.words.push_back(std::move(word_));
                break;
            case Target::file:
                break;
            case Target::hereString:
                current_.inputs.push_back(std::move(word_));
                break;
            case Target::hereDocument:
                hereDocuments_.push_back(
                    {segments_.size(), std::move(word_), stripTabs_, wordQuoted_});
                break;
        }
        target_ = Target::none;
        resetWord();
    }

    // "|" and "|&" feed the next command; "||" does not.
    void pipe() {
        const char next = peek(1);
        separate();
        if (next == '|' || next == '&') {
            ++pos_;
            segmentStart_ = pos_;
        }
        current_.pipedInput = next != '|';
    }

    // Ends the current segment at the separator under `pos_` and steps over it.
    void separate() {
        endSegment(pos_);
        ++pos_;
        segmentStart_ = pos_;
    }

    void endSegment(std::size_t end) {
        endWord();
        target_ = Target::none;
        current_.text = text_.substr(segmentStart_, end - segmentStart_);
        // A segment holding a here-document operator is never blank, so the index recorded
        // for its body stays right.
        if (!isBlank(current_.text)) {
            segments_.push_back(std::move(current_));
        }
        current_ = ShellSegment{};
    }

    // Just after a newline: the bodies of the here-documents opened on the line before, in order.
    void readHereDocuments() {
        for (PendingHereDocument& document : hereDocuments_) {
            const std::size_t bodyStart = pos_;
            std::size_t bodyEnd = text_.size();
            while (pos_ < text_.size()) {
                const std::size_t lineStart = pos_;
                std::size_t lineEnd = text_.find('\n', pos_);
                lineEnd = lineEnd == npos ? text_.size() : lineEnd;
                std::string_view line = text_.substr(lineStart, lineEnd - lineStart);
                if (document.stripTabs) {
                    line.remove_prefix(std::min(line.find_first_not_of('\t'), line.size()));
                }
                pos_ = std::min(lineEnd + 1, text_.size());
                if (line == document.delimiter) {
                    bodyEnd = lineStart;
                    break;
                }
            }
            if (document.segment >= segments_.size()) {
                continue;
            }
            ShellSegment& owner = segments_[document.segment];
            const std::string_view body = text_.substr(bodyStart, bodyEnd - bodyStart);
            owner.inputs.emplace_back(body);
            if (!document.quoted) {
                collectSubstitutions(body, owner.substitutions);
            }
            // The owner's text runs on over the body, so that the owner sees what it reads.
            const auto ownerStart = static_cast<std::size_t>(owner.text.data() - text_.data());
            owner.text = text_.substr(ownerStart, pos_ - ownerStart);
        }
        hereDocuments_.clear();
        segmentStart_ = pos_;
    }

    std::string_view text_;
    std::size_t pos_ = 0;
    std::size_t segmentStart_ = 0;
    std::vector<ShellSegment> segments_;
    ShellSegment current_;
    std::string word_;
    bool inWord_ = false;
    bool wordQuoted_ = false;
    Target target_ = Target::none;
    bool stripTabs_ = false;
    std::vector<PendingHereDocument> hereDocuments_;
};

}  // namespace

std::vector<ShellSegment> splitShellSegments(std::string_view text) {
    return Lexer(text).run();
}

}  // namespace orvo
