// SPDX-License-Identifier: MIT
#include "pdf/fonts/textscanner.h"

#include <algorithm>
#include <cmath>
#include <exception>

#include "pdf/fonts/fontdictionary.h"
#include "pdf/fonts/stringoperand.h"
#include "pdf/forms.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr std::size_t kWindow = std::size_t{256} << 10U;
constexpr std::size_t kMaxSaved = std::size_t{1} << 20U;

enum class TextOperator : std::uint8_t {
    kNone,
    kSave,
    kRestore,
    kState,
    kFont,
    kRendering,
    kShow,
    kDraw,
    kPattern,
    kInlineImage
};

TextOperator OperatorOf(std::string_view name) {
    struct Entry {
        std::string_view name;
        TextOperator meaning;
    };

    static constexpr Entry kOperators[] = {
        {"q", TextOperator::kSave},        {"Q", TextOperator::kRestore},
        {"'", TextOperator::kShow},        {"\"", TextOperator::kShow},
        {"Tj", TextOperator::kShow},       {"TJ", TextOperator::kShow},
        {"Tf", TextOperator::kFont},       {"Tr", TextOperator::kRendering},
        {"gs", TextOperator::kState},      {"Do", TextOperator::kDraw},
        {"scn", TextOperator::kPattern},   {"SCN", TextOperator::kPattern},
        {"ID", TextOperator::kInlineImage}};
    for (const Entry& entry : kOperators) {
        if (entry.name == name) {
            return entry.meaning;
        }
    }
    return TextOperator::kNone;
}

/// The last name among the operands, or nothing.
std::string_view NameAmong(const std::vector<Operand>& operands) {
    const auto found = std::find_if(operands.rbegin(), operands.rend(), [](const Operand& each) {
        return each.kind == OperandKind::kName;
    });
    return found == operands.rend() ? std::string_view() : found->text;
}

class Nesting {
public:
    explicit Nesting(std::size_t& depth) : mDepth(depth) { ++mDepth; }

    ~Nesting() { --mDepth; }

    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;
    Nesting(Nesting&&) = delete;
    Nesting& operator=(Nesting&&) = delete;

private:
    std::size_t& mDepth;
};

QPDFObjectHandle Find(const QPDFObjectHandle& resources, const char* category,
                      std::string_view name) {
    return Get(Get(resources, category), "/" + DecodeName(name));
}

}  // namespace

void ShownCodes::Add(std::string_view text, bool isSeen) {
    mAreSeen = mAreSeen || isSeen;
    if (mCMap == nullptr) {
        for (const char code : text) {
            mSimple.set(static_cast<unsigned char>(code));
        }
        return;
    }
    while (!text.empty()) {
        const CharCode code = mCMap->FirstOf(text);
        mComposite.insert(code);
        text.remove_prefix(code.bytes);
    }
}

std::set<CharCode> ShownCodes::Composite() const {
    return {mComposite.begin(), mComposite.end()};
}

void TextScanner::ScanPage(QPDFObjectHandle contents, const QPDFObjectHandle& resources) {
    Frame frame{resources, ++mResourcesIds, {}, {}, {}};
    std::string pending;
    const int count = contents.isArray() ? contents.getArrayNItems() : 1;
    for (int i = 0; i < count; ++i) {
        Add(frame, contents.isArray() ? contents.getArrayItem(i) : contents, pending);
        pending += '\n';
    }
    Run(frame, pending, true);
}

void TextScanner::ScanForm(const QPDFObjectHandle& form, const QPDFObjectHandle& resources) {
    Draw(Frame{resources, ++mResourcesIds, {}, {}, {}}, form, {});
}

void TextScanner::Add(Frame& frame, const QPDFObjectHandle& stream, std::string& pending) {
    std::size_t nextRun = pending.size() + kWindow;
    const auto take = [&](std::string_view piece) {
        pending += piece;
        mRoom -= piece.size();
        if (pending.size() >= nextRun) {
            Run(frame, pending, false);
            nextRun = kWindow + 2 * pending.size();
        }
    };
    const StreamResult result = PipeContent(stream, std::min(mRoom, kLargestContent), take);
    mIsComplete = mIsComplete && result != StreamResult::kTooLarge;
}

void TextScanner::Run(Frame& frame, std::string& pending, bool isComplete) {
    ContentParser parser(pending, isComplete);
    while (parser.Next()) {
        try {
            Execute(frame, parser);
        } catch (const std::exception&) {
            // The page, when it is played, reports what is damaged.
            continue;
        }
    }
    pending.erase(0, isComplete ? pending.size() : parser.Consumed());
}

void TextScanner::Execute(Frame& frame, ContentParser& parser) {
    const std::vector<Operand>& operands = parser.Operands();
    switch (OperatorOf(parser.Operator())) {
        case TextOperator::kNone:
            return;
        case TextOperator::kSave:
            mIsComplete = mIsComplete && frame.saved.size() < kMaxSaved;
            if (mIsComplete) {
                frame.saved.push_back(frame.text);
            }
            return;
        case TextOperator::kRestore:
            if (!frame.saved.empty()) {
                frame.text = frame.saved.back();
                frame.saved.pop_back();
            }
            return;
        case TextOperator::kState:
            return ApplyState(frame, NameAmong(operands));
        case TextOperator::kFont:
            return Select(frame, NameAmong(operands));
        case TextOperator::kRendering:
            return SetRendering(frame, operands);
        case TextOperator::kShow:
            return Show(frame, operands);
        case TextOperator::kDraw:
            return Draw(frame, Find(frame.resources, "/XObject", NameAmong(operands)), frame.text);
        case TextOperator::kPattern:
            if (!operands.empty() && operands.back().kind == OperandKind::kName) {
                Draw(frame, Find(frame.resources, "/Pattern", operands.back().text), {});
            }
            return;
        case TextOperator::kInlineImage:
            parser.TakeInlineImage(0);
            return;
    }
}

void TextScanner::Show(Frame& frame, const std::vector<Operand>& operands) {
    if (frame.text.font == nullptr) {
        return;
    }
    std::string codes;
    for (const Operand& operand : operands) {
        AppendString(operand, codes);
    }
    frame.text.font->Add(codes, !frame.text.isHidden);
}

void TextScanner::SetRendering(Frame& frame, const std::vector<Operand>& operands) {
    constexpr double kInvisible = 3.0;
    constexpr double kLast = 7.0;
    const bool isNumber = !operands.empty() && operands.back().kind == OperandKind::kNumber;
    if (isNumber && operands.back().number >= 0.0 && operands.back().number <= kLast) {
        frame.text.isHidden = std::floor(operands.back().number) == kInvisible;
    }
}

void TextScanner::Select(Frame& frame, std::string_view name) {
    const auto known = frame.fonts.find(name);
    if (known != frame.fonts.end()) {
        frame.text.font = known->second;
        return;
    }
    const QPDFObjectHandle font = Find(frame.resources, "/Font", name);
    frame.text.font = SetOf(font);
    frame.fonts.emplace(name, frame.text.font);
    if (NameOf(Get(font, "/Subtype")) == "Type3") {
        DrawGlyphs(frame, font);
    }
}

// All of them, whatever is shown.
void TextScanner::DrawGlyphs(const Frame& outer, const QPDFObjectHandle& font) {
    QPDFObjectHandle glyphs = Get(font, "/CharProcs");
    const QPDFObjectHandle own = Get(font, "/Resources");
    if (!glyphs.isDictionary() || !mType3.insert(FontKey(font)).second) {
        return;
    }
    const Frame frame{IsNull(own) ? outer.resources : own, ++mResourcesIds, {}, {}, {}};
    for (const auto& glyph : glyphs.getDictAsMap()) {
        Draw(frame, glyph.second, {});
    }
}

void TextScanner::ApplyState(Frame& frame, std::string_view name) {
    const QPDFObjectHandle state = Find(frame.resources, "/ExtGState", name);
    QPDFObjectHandle font = Get(state, "/Font");
    if (font.isArray() && font.getArrayNItems() > 0) {
        frame.text.font = SetOf(font.getArrayItem(0));
    }
    Draw(frame, Get(Get(state, "/SMask"), "/G"), {});
}

ShownCodes* TextScanner::SetOf(const QPDFObjectHandle& font) {
    if (!QPDFObjectHandle(font).isDictionary()) {
        return nullptr;
    }
    const std::string key = FontKey(font);
    return &mShown.try_emplace(key, mCMapOf ? mCMapOf(key) : nullptr).first->second;
}

void TextScanner::Draw(const Frame& outer, const QPDFObjectHandle& stream, const Text& text) {
    QPDFObjectHandle object = stream;
    if (!object.isStream() || NameOf(Get(object, "/Subtype")) == "Image" || mDepth >= kMaxDepth) {
        return;
    }
    QPDFObjectHandle resources = Get(object, "/Resources");
    const bool hasOwn = resources.isDictionary();
    Frame frame{hasOwn ? resources : outer.resources, hasOwn ? 0 : outer.resourcesId, text, {}, {}};
    if (mDrawn.size() >= kMaxDrawn) {
        mIsComplete = false;
    } else if (mDrawn.emplace(object.getObjGen(), frame.resourcesId, text).second) {
        // Numbered anew for what is drawn in it and has none of its own.
        frame.resourcesId = hasOwn ? ++mResourcesIds : frame.resourcesId;
        const Nesting nesting(mDepth);
        std::string pending;
        Add(frame, object, pending);
        Run(frame, pending, true);
    }
}

}  // namespace VANTIX::PDF
