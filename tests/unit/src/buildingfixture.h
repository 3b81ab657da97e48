// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "core/registry/irunenvironment.h"
#include "fontbuilderfixture.h"
#include "platform/randomsource.h"
#include "psfontbuilderfactory.h"
#include "support/programpage.h"

namespace VANTIX::TEST {

inline constexpr const char* kBox = "100 0 moveto 100 800 lineto 900 800 lineto 900 0 lineto ";
inline constexpr const char* kLeaf =
    "500 0 moveto 166.667 0 0 133.333 0 400 curveto 0 666.667 166.667 800 500 800 curveto "
    "833.333 800 1000 666.667 1000 400 curveto 1000 133.333 833.333 0 500 0 curveto ";

/// Shows a string of one font.
inline std::string Show(const std::string& font, const std::string& hex) {
    return "/" + font + " findfont 32 scalefont setfont 0 8 moveto <" + hex + "> show\n";
}

/// Fills what the string should be.
inline std::string Fill(const std::string& first, const std::string& second) {
    return "0 8 translate .032 .032 scale newpath " + first + "closepath fill 1000 0 translate " +
           second + "closepath fill\n";
}

/// Glyphs and fills take in the pixels of an edge by rules of their own.
inline void ExpectDrawn(const std::string& program, const std::string& reference) {
    const auto difference = Compare(DrawProgram(program), DrawProgram(reference));
    EXPECT_LE(difference.mean, 3) << difference.Describe();
    EXPECT_LE(difference.wrongShare, 0.01) << difference.Describe();
}

/// A job's time that does not pass.
class FixedTime : public TObject<COREREGISTRY::IRunEnvironment> {
public:
    bool GetSeed(std::uint64_t& /*seed*/) const override { return false; }

    bool GetTime(std::int64_t& seconds) const override {
        seconds = 1707436799;
        return true;
    }
};

class FontBuilders : public FontBuilderFixture {
protected:
    using BuilderPtr = TInterfacePtr<GRAPHICS::IFontBuilder>;

    FontBuilders() {
        FakeFactory environment;
        environment.Offer<FixedTime>(COREREGISTRY::CLSID_RUNENVIRONMENT);
        PLATFORM::AdoptRunEnvironment(&environment);
        maker = TInterfacePtr<PS::IPSFontBuilderFactory>::Adopt(
            static_cast<PS::IPSFontBuilderFactory*>(PS::CreatePSFontBuilderFactory()));
    }

    ~FontBuilders() override { PLATFORM::AdoptRunEnvironment(nullptr); }

    BuilderPtr Create(FakeFont& font, const char* name, PS::TPSFontType type) {
        return BuilderPtr::Adopt(maker->CreatePSFontBuilder(factory, &font, packet, name, type));
    }

    /// What the builder of a TrueType font makes of it.
    std::string Build(FakeFont& font, PS::TPSFontType type, const char* name = "ABCDEF+Test") {
        const auto builder = Create(font, name, type);
        EXPECT_TRUE(builder && builder->BuildFont());
        return packet.Take();
    }

    static std::string Expect(const std::string& text, const std::string& piece) {
        return text.find(piece) == std::string::npos ? text : piece;
    }

    TInterfacePtr<PS::IPSFontBuilderFactory> maker;
};

#define EXPECT_HOLDS(text, piece) EXPECT_EQ(Expect(text, piece), piece)

}  // namespace VANTIX::TEST
