// SPDX-License-Identifier: MIT
#include "support/pdfmarks.h"

#include <cctype>
#include <sstream>

namespace VANTIX::TEST {
namespace {

constexpr const char* kOneProduct = "product (Jaws PDF Creator) eq";

bool IsGap(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

/// The next value of a text: a bracketed one whole, a name, or a word.
std::string NextValue(const std::string& text, std::size_t& at) {
    while (at < text.size() && IsGap(text[at])) {
        ++at;
    }
    const std::size_t start = at;
    int depth = 0;
    while (at < text.size()) {
        const char c = text[at];
        const bool opens = c == '[' || c == '{' || c == '<';
        const bool closes = c == ']' || c == '}' || c == '>';
        const bool starts = opens || c == '/' || IsGap(c);
        if (depth == 0 && at > start && starts && text[at - 1] != '<') {
            break;
        }
        depth += opens ? 1 : closes ? -1 : 0;
        ++at;
        if (depth == 0 && closes && (at == text.size() || text[at] != '>')) {
            break;
        }
    }
    return text.substr(start, at - start);
}

std::map<std::string, std::string> Entries(const std::string& text) {
    std::map<std::string, std::string> entries;
    for (std::size_t at = 0; at < text.size();) {
        const std::string key = NextValue(text, at);
        if (key.size() > 1 && key[0] == '/') {
            entries[key.substr(1)] = NextValue(text, at);
        }
    }
    return entries;
}

std::map<std::string, std::string> Dictionary(const std::string& text) {
    return text.size() < 4 ? std::map<std::string, std::string>()
                           : Entries(text.substr(2, text.size() - 4));
}

/// "[ … /KIND pdfmark", all in one text.
Pdfmark Read(const std::string& text) {
    const std::size_t end = text.rfind(" pdfmark");
    const std::size_t kind = text.rfind('/', end);
    Pdfmark mark{text.substr(kind + 1, end - kind - 1), {}, {}};
    std::string body = text.substr(1, kind - 1);
    if (!body.empty() && body[0] == '{') {
        std::size_t at = 0;
        mark.subject = NextValue(body, at);
        body.erase(0, at);
    }
    mark.entries = Entries(body);
    return mark;
}

/// Makes the outline of one job.
class Outliner {
public:
    std::string Of(const std::vector<Pdfmark>& marks) {
        for (const Pdfmark& mark : marks) {
            Add(mark);
        }
        return mText.str();
    }

private:
    void Add(const Pdfmark& mark) {
        if (mark.kind == "BP") {
            AddForm(mark.entries);
        } else if (mark.kind == "EP") {
            mText << "end\n";
            mState.clear();
        } else if (mark.kind == "SP") {
            mText << "draw " << mForms[mark.subject] << '\n';
        } else if (mark.kind == "NI") {
            AddImage(mark.entries);
        } else if (mark.kind == "SetTransparency") {
            AddState(mark.entries);
        }
    }

    void AddForm(const std::map<std::string, std::string>& form) {
        const std::size_t number = mForms.size() + 1;
        mForms[ValueOf(form, "_objdef")] = number;
        mText << "form " << number << ' ' << ValueOf(form, "BBox");
        if (!form.contains("Group")) {
            mText << " plain\n";
            return;
        }
        const auto group = Dictionary(form.at("Group"));
        mText << " group" << (ValueOf(group, "I") == "true" ? " isolated" : "")
              << (ValueOf(group, "K") == "true" ? " knockout" : "")
              << (!group.contains("CS") ? "" : " " + group.at("CS")) << '\n';
        mState.clear();
    }

    void AddImage(const std::map<std::string, std::string>& image) {
        if (image.contains("IsSoftMask")) {
            mMasks.emplace(ValueOf(image, "_objdef"), mMasks.size() + 1);
            mText << "mask " << mMasks.size() << '\n';
        } else {
            mText << "image masked by " << mMasks[ValueOf(image, "SMask")] << '\n';
        }
    }

    void AddState(const std::map<std::string, std::string>& state) {
        std::string text = "state ca " + ValueOf(state, "ca") + " CA " + ValueOf(state, "CA") +
                           " " + ValueOf(state, "BM").substr(1);
        if (state.contains("SMask")) {
            const auto mask = Dictionary(state.at("SMask"));
            text += " mask " + ValueOf(mask, "S").substr(1) + " " +
                    std::to_string(mForms[ValueOf(mask, "G")]) +
                    (!mask.contains("BC") ? "" : " over " + mask.at("BC")) +
                    (!mask.contains("TR") ? "" : " by a curve");
        }
        if (text != mState) {
            mText << text << '\n';
        }
        mState = text;
    }

    static std::string ValueOf(const std::map<std::string, std::string>& entries, const char* key) {
        const auto found = entries.find(key);
        return found == entries.end() ? "?" : found->second;
    }

    std::ostringstream mText;
    std::map<std::string, std::size_t> mForms;
    std::map<std::string, std::size_t> mMasks;
    std::string mState;
};

}  // namespace

std::vector<Pdfmark> PdfmarksOf(const std::string& job) {
    constexpr std::size_t kLongest = 20000;
    std::vector<Pdfmark> marks;
    std::istringstream lines(job);
    std::string open;
    bool skips = false;
    for (std::string line; std::getline(lines, line);) {
        skips = (skips && line != "}") || line == kOneProduct;
        const std::size_t start = line.find_first_not_of(' ');
        const bool begins = start != std::string::npos && line[start] == '[' &&
                            line.find_first_of("/{", start) == start + 1;
        if (skips || (open.empty() && !begins)) {
            continue;
        }
        open += begins ? line.substr(start) : "\n" + line;
        const bool ends = line.size() > 8 && line.compare(line.size() - 8, 8, " pdfmark") == 0;
        if (ends) {
            marks.push_back(Read(open));
        }
        if (ends || open.size() > kLongest) {
            open.clear();
        }
    }
    return marks;
}

std::string OutlineOf(const std::string& job) {
    return Outliner().Of(PdfmarksOf(job));
}

}  // namespace VANTIX::TEST
