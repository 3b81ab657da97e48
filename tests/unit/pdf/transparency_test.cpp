// SPDX-License-Identifier: MIT
#include "pdf/transparency.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace VANTIX::TESTS {
namespace {

namespace TR = PDF::TRANSPARENCY;

QPDFObjectHandle Parsed(const std::string& text) {
    return QPDFObjectHandle::parse(text);
}

/// Resources that make all paint half transparent.
constexpr const char* kHalf = "<< /ExtGState << /G << /ca 0.5 >> >> >>";

class Survey : public testing::Test {
protected:
    Survey() { mPdf.emptyPDF(); }

    /// An object of the document that holds `resources`, as a font or a form does.
    QPDFObjectHandle Owner(const QPDFObjectHandle& resources) {
        QPDFObjectHandle owner = mPdf.makeIndirectObject(QPDFObjectHandle::newDictionary());
        owner.replaceKey("/Resources", resources);
        return owner;
    }

    /// Lets `from` name `to` as a resource of `category` under a name of its own.
    static void Hold(QPDFObjectHandle from, const std::string& category,
                     const QPDFObjectHandle& to) {
        QPDFObjectHandle resources = from.getKey("/Resources");
        if (!resources.hasKey(category)) {
            resources.replaceKey(category, QPDFObjectHandle::newDictionary());
        }
        QPDFObjectHandle names = resources.getKey(category);
        names.replaceKey("/N" + std::to_string(++mNames), to);
    }

    QPDFObjectHandle Owner() { return Owner(QPDFObjectHandle::newDictionary()); }

    PDF::TransparencySurvey survey;

private:
    static inline int mNames = 0;
    QPDF mPdf;
};

// Whichever of a circle is asked for first, all of them show what any of them does.
TEST_F(Survey, ResourcesThatHoldOneAnotherShowTheSame) {
    const QPDFObjectHandle first = Owner();
    const QPDFObjectHandle second = Owner();
    const QPDFObjectHandle third = Owner();
    Hold(first, "/XObject", second);
    Hold(second, "/Pattern", first);
    Hold(first, "/Font", third);
    Hold(third, "/XObject", third);
    Hold(first, "/XObject", Owner(Parsed(kHalf)));
    EXPECT_EQ(survey.FindOf(second), TR::kAlpha);
    EXPECT_EQ(survey.FindOf(first), TR::kAlpha);
    EXPECT_EQ(survey.FindOf(third), TR::kNone);
    EXPECT_EQ(survey.Find(QPDFObjectHandle(second).getKey("/Resources")), TR::kAlpha);
}

// Two ways at each of many steps lead to no more than the steps.
TEST_F(Survey, EachObjectIsLookedAtOnce) {
    constexpr int kSteps = 20000;
    const QPDFObjectHandle last = Owner(Parsed(kHalf));
    QPDFObjectHandle step = last;
    for (int i = 0; i < kSteps; ++i) {
        const QPDFObjectHandle next = Owner();
        Hold(next, i % 2 == 0 ? "/Font" : "/XObject", step);
        Hold(next, "/Pattern", step);
        step = next;
    }
    EXPECT_EQ(survey.FindOf(step), TR::kAlpha);
}

TEST_F(Survey, ManyFormsOfOneResourceDictionaryAreQuick) {
    constexpr int kForms = 100000;
    const QPDFObjectHandle shared = Owner();
    std::vector<QPDFObjectHandle> forms;
    for (int i = 0; i < kForms; ++i) {
        forms.push_back(Owner());
        Hold(shared, "/XObject", forms.back());
        Hold(forms.back(), "/Font", shared);
    }
    Hold(forms.back(), "/ExtGState", Parsed("<< /BM /Multiply >>"));
    unsigned kinds = ~0U;
    for (const QPDFObjectHandle& form : forms) {
        kinds &= survey.FindOf(form);
    }
    EXPECT_EQ(kinds, TR::kBlending);
}

}  // namespace
}  // namespace VANTIX::TESTS
