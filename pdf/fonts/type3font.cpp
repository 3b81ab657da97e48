// SPDX-License-Identifier: MIT
#include "pdf/fonts/type3font.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>
#include <vector>

#include "pdf/fonts/simplefont.h"
#include "pdf/forms.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

/// Fonts within the glyphs of fonts.
constexpr int kMostNested = 8;

/// Forms within forms of one glyph, and all bytes that are read of it.
constexpr std::size_t kMostForms = 8;
constexpr std::size_t kMostBytes = std::size_t{64} << 20U;

/// Operators after which a glyph has not just the colour that it is shown in.
bool SetsColor(std::string_view name) {
    static constexpr std::string_view kOperators[] = {"CS", "cs", "SC", "SCN", "sc", "scn", "G",
                                                      "g",  "RG", "rg", "K",   "k",  "sh",  "ri"};
    return std::find(std::begin(kOperators), std::end(kOperators), name) != std::end(kOperators);
}

bool Strokes(std::string_view name) {
    static constexpr std::string_view kOperators[] = {"S", "s", "B", "B*", "b", "b*", "Tr"};
    return std::find(std::begin(kOperators), std::end(kOperators), name) != std::end(kOperators);
}

/// Whether the dictionary of an inline image says that it is a mask.
bool IsInlineMask(const std::vector<Operand>& operands) {
    for (std::size_t i = 0; i + 1 < operands.size(); ++i) {
        const Operand& key = operands[i];
        if (key.kind == OperandKind::kName && (key.text == "IM" || key.text == "ImageMask")) {
            return operands[i + 1].text == "true";
        }
    }
    return false;
}

std::array<double, 6> FontMatrixOf(const QPDFObjectHandle& dictionary) {
    constexpr double kThousandth = 0.001;
    const QPDFObjectHandle matrix = Get(dictionary, "/FontMatrix");
    return IsNull(matrix) ? std::array<double, 6>{kThousandth, 0, 0, kThousandth, 0, 0}
                          : MatrixOf(matrix);
}

/// The box in which a glyph marks; nothing where none is known.
std::optional<std::array<float, 4>> BoxOf(const std::array<float, 4>& declared) {
    const auto [x0, x1] = std::minmax(declared[0], declared[2]);
    const auto [y0, y1] = std::minmax(declared[1], declared[3]);
    if (x0 == x1 || y0 == y1) {
        return std::nullopt;
    }
    return std::array<float, 4>{x0, y0, x1, y1};
}

}  // namespace

Resources& Type3Font::ResourcesOf(ColorSpaces& colorSpaces) const {
    if (!mInForce) {
        mInForce = std::make_unique<Resources>(resources, colorSpaces);
    }
    return *mInForce;
}

/// Reads the content of a glyph for what it declares and whether it has colours of its own.
class Type3Fonts::Survey {
public:
    Survey(Type3Fonts& fonts, Type3Font& font, GlyphDescription& glyph)
        : mFonts(fonts), mFont(font), mGlyph(glyph) {}

    void Run() {
        Scan(mGlyph.stream, mFont.resources);
        mGlyph.isPlayed = mGlyph.isPlayed && mGlyph.isColoured;
    }

private:
    void Scan(const QPDFObjectHandle& stream, const QPDFObjectHandle& outer) {
        const QPDFObjectHandle own = Get(stream, "/Resources");
        const QPDFObjectHandle& resources = IsNull(own) ? outer : own;
        std::string content;
        AppendStreamData(stream, content, mRoom);
        mRoom -= std::min(mRoom, content.size());
        ContentParser parser(content);
        while (parser.Next()) {
            Execute(parser, resources);
        }
    }

    void Execute(ContentParser& parser, const QPDFObjectHandle& resources) {
        const std::vector<Operand>& operands = parser.Operands();
        const std::string_view name = parser.Operator();
        const auto resource = [&](const char* category) {
            const auto last = std::find_if(
                operands.rbegin(), operands.rend(),
                [](const Operand& operand) { return operand.kind == OperandKind::kName; });
            return last == operands.rend()
                       ? QPDFObjectHandle::newNull()
                       : Get(Get(resources, category), "/" + DecodeName(last->text));
        };
        if (name == "d0" || name == "d1") {
            Declare(name == "d0", operands);
        } else if (name == "Tf") {
            Show(resource("/Font"));
        } else if (name == "gs") {
            QPDFObjectHandle font = Get(resource("/ExtGState"), "/Font");
            Show(font.isArray() && font.getArrayNItems() > 0 ? font.getArrayItem(0) : font);
            mGlyph.isPlayed = true;
        } else if (name == "Do") {
            Draw(resource("/XObject"), resources);
        } else if (name == "ID") {
            mGlyph.isPlayed = mGlyph.isPlayed || !IsInlineMask(operands);
            parser.TakeInlineImage(0);
        } else {
            mGlyph.isPlayed = mGlyph.isPlayed || SetsColor(name);
            mGlyph.isStroked = mGlyph.isStroked || Strokes(name);
        }
    }

    // The first declaration counts.
    void Declare(bool isColoured, const std::vector<Operand>& operands) {
        const std::size_t count = isColoured ? 2 : 6;
        if (std::exchange(mIsDeclared, true) || operands.size() < count) {
            return;
        }
        const Operand* operand = operands.data() + (operands.size() - count);
        mGlyph.isColoured = isColoured;
        mGlyph.width = ToFloat(operand[0].number);
        for (std::size_t i = 2; i < count; ++i) {
            mGlyph.box.at(i - 2) = ToFloat(operand[i].number);
        }
    }

    void Show(const QPDFObjectHandle& dictionary) {
        if (NameOf(Get(dictionary, "/Subtype")) != "Type3") {
            return;
        }
        const auto shown = mFonts.Read(dictionary, mFont.resources);
        if (!shown) {
            return;
        }
        mFont.height = std::max(mFont.height, shown->height + 1);
        mGlyph.isPlayed =
            mGlyph.isPlayed || std::any_of(shown->glyphs.begin(), shown->glyphs.end(),
                                           [](const auto& glyph) { return glyph.second.isPlayed; });
    }

    void Draw(QPDFObjectHandle object, const QPDFObjectHandle& resources) {
        if (NameOf(Get(object, "/Subtype")) != "Form") {
            mGlyph.isPlayed = mGlyph.isPlayed || !BoolOf(Get(object, "/ImageMask"), false);
        } else if (object.isStream() && mForms < kMostForms &&
                   mSeen.insert(object.getObjGen()).second) {
            ++mForms;
            Scan(object, resources);
            --mForms;
        }
    }

    Type3Fonts& mFonts;
    Type3Font& mFont;
    GlyphDescription& mGlyph;
    std::set<QPDFObjGen> mSeen;
    std::size_t mForms = 0;
    std::size_t mRoom = kMostBytes;
    bool mIsDeclared = false;
};

std::shared_ptr<const Type3Font> Type3Fonts::Read(const QPDFObjectHandle& dictionary,
                                                  const QPDFObjectHandle& outer) {
    const std::string key = FontKey(dictionary);
    if (const auto known = mFonts.find(key); known != mFonts.end()) {
        return known->second;
    }
    if (mDepth >= kMostNested) {
        mReporter.Warn("recursion", "Type 3 fonts are nested too deep");
        return nullptr;
    }
    mFonts.emplace(key, nullptr);
    ++mDepth;
    auto font = ReadNew(dictionary, outer);
    --mDepth;
    return mFonts[key] = std::move(font);
}

std::shared_ptr<const Type3Font> Type3Fonts::ReadNew(const QPDFObjectHandle& dictionary,
                                                     const QPDFObjectHandle& outer) {
    auto font = std::make_shared<Type3Font>();
    const QPDFObjectHandle own = Get(dictionary, "/Resources");
    font->resources = IsNull(own) ? outer : own;
    font->matrix = FontMatrixOf(dictionary);
    QPDFObjectHandle procedures = Get(dictionary, "/CharProcs");
    if (!IsInvertible(font->matrix) || !procedures.isDictionary()) {
        mReporter.Warn("font-type3", "A Type 3 font without glyphs or with a matrix of no use");
        return nullptr;
    }
    std::map<std::string, QPDFObjectHandle> streams;
    for (const auto& [name, stream] : procedures.getDictAsMap()) {
        if (QPDFObjectHandle(stream).isStream()) {
            streams.emplace(HOST::SanitiseGlyphName(name.substr(1)), stream);
        }
    }
    const GlyphNames names = ReadEncoding(Get(dictionary, "/Encoding")).Names({});
    for (std::size_t code = 0; code < names.size(); ++code) {
        const auto stream = streams.find(names[code]);
        if (stream == streams.end()) {
            continue;
        }
        const auto [glyph, isNew] = font->glyphs.try_emplace(names[code]);
        font->byCode[code] = &glyph->second;
        if (isNew) {
            glyph->second.stream = stream->second;
            Survey(*this, *font, glyph->second).Run();
        }
    }
    return font;
}

namespace {

/// Names the glyphs of a font so that they tell their characters, where that is known.
class GlyphNaming {
public:
    GlyphNaming(const Type3Font& font, const FontDictionary& dictionary) : mDictionary(dictionary) {
        for (const auto& [name, glyph] : font.glyphs) {
            mOwn.emplace(&glyph, name);
            mTaken.insert(name);
        }
    }

    /// The name of a glyph of the font that is shown by a code, and whether it is new.
    std::pair<std::string, bool> NameAt(std::size_t code, const GlyphDescription* glyph) {
        const auto [known, isNew] = mGiven.try_emplace(glyph, mOwn.at(glyph));
        if (isNew) {
            const std::string telling =
                TellingName(mDictionary, static_cast<std::uint32_t>(code), known->second);
            if (!telling.empty() && mTaken.insert(telling).second) {
                known->second = telling;
            }
        }
        return {known->second, isNew};
    }

private:
    const FontDictionary& mDictionary;
    std::map<const GlyphDescription*, std::string> mOwn;
    std::map<const GlyphDescription*, std::string> mGiven;
    std::set<std::string> mTaken;
};

}  // namespace

TInterfacePtr<HOST::SimpleFont> MakeType3Font(const std::shared_ptr<const Type3Font>& font,
                                              const FontDictionary& dictionary,
                                              std::int32_t selector, const GlyphPlayer& player) {
    std::array<float, 6> matrix{};
    std::transform(font->matrix.begin(), font->matrix.end(), matrix.begin(), ToFloat);
    HOST::SimpleFontDescription description;
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), "Type3-%02d-%05d", font->height, selector);
    description.name = name.data();
    description.family = dictionary.family.empty() ? dictionary.name : dictionary.family;
    description.selector = selector;
    description.isFixedPitch = dictionary.isFixedPitch;
    std::vector<HOST::Type3Glyph> glyphs;
    GlyphNaming naming(*font, dictionary);
    for (std::size_t code = 0; code < HOST::kSimpleCodes; ++code) {
        // Widths of the dictionary are given as of a glyph space of thousandths.
        const float given = dictionary.widths[code];
        const GlyphDescription* glyph = font->byCode[code];
        description.widths[code] = given * 1000.0F * matrix[0];
        if (glyph == nullptr) {
            continue;
        }
        const float width = std::isnan(given) ? glyph->width : given * 1000.0F;
        if (glyph->isPlayed) {
            description.widths[code] = width * matrix[0];
            continue;
        }
        const auto [glyphName, isNew] = naming.NameAt(code, glyph);
        description.encoding[code] = glyphName;
        if (isNew) {
            const auto box = BoxOf(glyph->box);
            glyphs.push_back(
                {glyphName, width, box.value_or(glyph->box), glyph->isColoured || !box,
                 [font, glyph, player](auto& recording) { player(*font, *glyph, recording); }});
        }
    }
    return HOST::MakeType3Font(std::move(glyphs), std::move(description), matrix);
}

}  // namespace VANTIX::PDF
