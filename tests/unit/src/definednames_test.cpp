// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/definednames.h"

#include <gtest/gtest.h>

namespace VANTIX::PS {
namespace {

using Text = DefinedNames::Text;

TEST(DefinedNames, AFormKnowsTheBodyAndItselfUntilItEnds) {
    DefinedNames names;
    names.Define("body");
    names.Begin(Text::kForm);
    names.Define("outer");
    names.Begin(Text::kForm);
    EXPECT_NE(names.Find("body"), nullptr);
    EXPECT_EQ(names.Find("outer"), nullptr);
    names.Define("inner");
    names.End(true);
    EXPECT_NE(names.Find("inner"), nullptr);
    EXPECT_NE(names.Find("outer"), nullptr);
    names.Begin(Text::kForm);
    names.Define("dropped");
    names.End(false);
    EXPECT_EQ(names.Find("dropped"), nullptr);
    names.End(true);
    EXPECT_NE(names.Find("outer"), nullptr);
    names.End(true);
    EXPECT_NE(names.Find("body"), nullptr);
}

TEST(DefinedNames, AProcedureKnowsItsOwnerAndAFormInItTheBodyAlone) {
    DefinedNames names;
    names.Define("body");
    names.Begin(Text::kForm);
    names.Define("owner");
    names.Begin(Text::kProcedure);
    EXPECT_NE(names.Find("owner"), nullptr);
    EXPECT_EQ(names.FindLasting("owner"), nullptr);
    names.Define("cell");
    names.Begin(Text::kForm);
    EXPECT_EQ(names.Find("owner"), nullptr);
    EXPECT_EQ(names.Find("cell"), nullptr);
    EXPECT_NE(names.FindLasting("body"), nullptr);
    names.Define("form");
    names.End(true);
    EXPECT_NE(names.FindLasting("cell"), nullptr);
    names.End(true);
    EXPECT_EQ(names.Find("cell"), nullptr);
    EXPECT_NE(names.Find("form"), nullptr);
}

TEST(DefinedNames, NoFormTakesANameFromATextThatReliesOnIt) {
    DefinedNames names;
    const DefinedNames::Meaning first{GUID{}, 1};
    const DefinedNames::Meaning second{GUID{}, 2};
    names.Define("N", first);
    EXPECT_FALSE(names.IsTaken("N", second));
    names.Begin(Text::kForm);
    EXPECT_TRUE(names.IsTaken("N", second));
    EXPECT_FALSE(names.IsTaken("N", first));
    names.Define("M", first);
    names.Begin(Text::kForm);
    EXPECT_TRUE(names.IsTaken("M", second));
}

}  // namespace
}  // namespace VANTIX::PS
