// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <filesystem>

#include "e2e/pdftext.h"
#include "e2e/tool.h"
#include "support/ghostscriptpages.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

/// Drawn after every odd thing: the page must go on up to it.
constexpr const char* kMark = "\n0 0 0 rg 40 40 20 20 re f\n";

struct HostilePage {
    const char* name;
    std::string pdf;
    bool markSurvives = true;
};

std::string Chain(std::size_t count, const std::string& first, const std::string& second) {
    std::string chain;
    for (std::size_t i = 0; i < count; ++i) {
        chain += first;
    }
    return chain + Repeated(second, count);
}

/// Forms 5, 6, … each drawing the next; the last draws the first again when `loops`.
std::string FormChain(std::size_t count, bool loops) {
    std::vector<std::string> forms;
    for (std::size_t i = 0; i < count; ++i) {
        const bool last = i + 1 == count;
        const std::string next = std::to_string(last ? 5 : 6 + i);
        const std::string entries =
            "/Type /XObject /Subtype /Form /BBox [0 0 100 100] /Resources << /XObject << /F " +
            next + " 0 R >> >>";
        forms.push_back(StreamOf(last && !loops ? "1 0 0 rg 0 0 9 9 re f" : "/F Do", entries));
    }
    return PageOf(std::string("/F Do") + kMark, "/XObject << /F 5 0 R >>", forms);
}

/// Content that fills with the pattern P.
constexpr const char* kPatternFill = "/Pattern cs /P scn 0 0 30 30 re f ";

/// Patterns 5, 6, … each of which paints with the next one, and twice when `doubled`.
std::string PatternChain(std::size_t count, bool doubled) {
    std::vector<std::string> patterns;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string next = std::to_string(6 + i) + " 0 R ";
        patterns.push_back(StreamOf(
            std::string(kPatternFill) + (doubled ? "/Q scn 4 4 2 2 re f" : ""),
            "/PatternType 1 /PaintType 1 /TilingType 1 /BBox [0 0 8 8] /XStep 8 /YStep 8 "
            "/Resources << /Pattern << /P " +
                next + "/Q " + (i + 1 < count ? std::to_string(7 + i) + " 0 R" : next) + " >> >>"));
    }
    return PageOf(std::string(kPatternFill) + kMark, "/Pattern << /P 5 0 R >>", patterns);
}

/// A page that fills with a pattern of the entries.
std::string PatternPage(const std::string& entries, const std::string& content = "0 0 4 4 re f",
                        const std::vector<std::string>& more = {}) {
    std::vector<std::string> objects{StreamOf(content, "/PatternType 1 " + entries)};
    objects.insert(objects.end(), more.begin(), more.end());
    return PageOf(std::string(kPatternFill) + kMark, "/Pattern << /P 5 0 R >>", objects);
}

std::string SpacePage(const std::string& space, const std::vector<std::string>& more) {
    return PageOf(std::string("/S cs 0.5 scn 0 0 9 9 re f") + kMark,
                  "/ColorSpace << /S " + space + " >>", more);
}

std::vector<HostilePage> HostilePages() {
    const std::string mark = kMark;
    const std::string form = "/Type /XObject /Subtype /Form /BBox [0 0 9 9]";
    const std::string cell = "/BBox [0 0 8 8]";
    const std::string steps = " /XStep 8 /YStep 8";
    return {
        {"SavesNestedDeeply", PageOf(Repeated("q ", 20000) + mark)},
        {"RestoresWithoutSaves", PageOf(Repeated("Q ", 20000) + mark)},
        {"ArraysNestedDeeply", PageOf(Repeated("[ ", 20000) + mark), false},
        {"DictionariesNestedDeeply", PageOf(Chain(5000, "<< /A ", " >> ") + "n" + mark)},
        {"OperandsWithoutEnd", PageOf(Repeated("1 ", 200000) + "w" + mark)},
        {"NumbersTooGreat",
         PageOf("1e400 w 99999999999999999999999999 0 m 1 -99999999999999999999 l S "
                "123456789012 0 0 123456789012 0 0 cm q 1e38 0 0 1e38 0 0 cm Q"),
         false},
        {"TokensThatAreNoNumbers",
         PageOf("nan inf m -inf NaN l --5 +-3 m 1..2 . l - + 3 l 0x10 1e m S [nan] 0 d" + mark)},
        {"ManyLengthsInADash",
         PageOf("[" + Repeated("1 2.5 ", 5000) + "] 0 d 0 0 m 9 9 l S" + mark)},
        {"DashesOfNoLength", PageOf("[0 0] 0 d 0 9 m 99 9 l S [-1 2] 0 d 0 9 m 99 9 l S" + mark)},
        {"TinyDashes", PageOf("[0.0000001] 0 d 0 9 m 99 9 l S" + mark)},
        {"StringWithoutEnd", PageOf("(abc (def " + mark), false},
        {"ImageWithoutEnd", PageOf(mark + "BI /W 10 /H 10 ID abcdef")},
        {"MarkedContentWithoutEnd", PageOf(Repeated("/OC /X BDC ", 3000) + mark)},
        {"ResourcesMissing", PageOf("/A gs /B cs 1 scn /C Do /D sh 0 0 9 9 re f" + mark)},
        {"FormThatDrawsItself", FormChain(1, true)},
        {"FormsThatDrawEachOther", FormChain(3, true)},
        {"PatternOfItself",
         PatternPage(cell + steps + " /Resources << /Pattern << /P 5 0 R >> >>", kPatternFill)},
        {"PatternOfAFormOfItself",
         PatternPage(cell + steps + " /Resources << /XObject << /F 6 0 R >> >>", "/F Do",
                     {StreamOf(kPatternFill, form + " /Resources << /Pattern << /P 5 0 R >> >>")})},
        {"PatternsNestedDeeply", PatternChain(100, false)},
        {"PatternsMultiplied", PatternChain(40, true)},
        {"PatternWithoutABox", PatternPage(steps)},
        {"PatternWithoutArea", PatternPage("/BBox [0 8 8 8]" + steps)},
        {"PatternWithoutSteps", PatternPage(cell)},
        {"PatternOfNoSteps", PatternPage(cell + " /XStep 0 /YStep 0")},
        {"PatternOfTinySteps", PatternPage(cell + " /XStep 0.0000001 /YStep 8")},
        {"PatternOfAFlatMatrix", PatternPage(cell + steps + " /Matrix [1 1 1 1 0 0]")},
        {"PatternOfATinyMatrix",
         PatternPage(cell + steps + " /Matrix [0.0000001 0 0 0.0000001 0 0]")},
        {"PatternWithoutColor", PatternPage(cell + steps + " /PaintType 2")},
        {"PatternOfOpenStates", PatternPage(cell + steps, "q q 1 0 0 rg 0 0 4 4 re f (")},
        {"PatternThatIsNoStream",
         PageOf(kPatternFill + mark, "/Pattern << /P << /PatternType 1 >> >>")},
        {"FormsNestedDeeply", FormChain(200, false)},
        {"FormsMultiplied", PageOf(Repeated("/F Do ", 60) + mark, "/XObject << /F 5 0 R >>",
                                   {StreamOf(Repeated("/G Do ", 60),
                                             form + " /Resources << /XObject << /G 6 0 R >> >>"),
                                    StreamOf("0 0 1 1 re f", form)})},
        {"FormWithoutArea", PageOf("/F Do" + mark, "/XObject << /F 5 0 R >>",
                                   {StreamOf("0 0 9 9 re f",
                                             "/Type /XObject /Subtype /Form /BBox [5 5 5 5] "
                                             "/Matrix [0 0 0 0 0 0]")})},
        {"SpaceThatIsItsOwnBase", SpacePage("5 0 R", {"[/Indexed 5 0 R 1 <00FF>]"})},
        {"SpaceThatIsItsOwnAlternate",
         SpacePage("5 0 R",
                   {"[/Separation /X 5 0 R 6 0 R]", "<< /FunctionType 2 /Domain [0 1] /N 1 >>"})},
        {"FunctionThatIsItsOwnPart",
         SpacePage("[/Separation /X /DeviceGray 5 0 R]",
                   {"<< /FunctionType 3 /Domain [0 1] /Functions [5 0 R 5 0 R] /Bounds [0.5] "
                    "/Encode [0 1 0 1] >>"})},
        {"CalculatorNestedDeeply",
         SpacePage(
             "[/Separation /X /DeviceGray 5 0 R]",
             {StreamOf(Chain(20000, "{ ", "} "), "/FunctionType 4 /Domain [0 1] /Range [0 1]")})},
        {"CalculatorThatFailsWhenRun",
         SpacePage("[/Separation /X /DeviceGray 5 0 R]",
                   {StreamOf("{ pop pop pop 0 div 1000000 copy 99 index ln }",
                             "/FunctionType 4 /Domain [0 1] /Range [0 1]")})},
        {"TableTooGreat",
         SpacePage("[/Separation /X /DeviceGray 5 0 R]",
                   {StreamOf("abc",
                             "/FunctionType 0 /Domain [0 1] /Range [0 1] /BitsPerSample 32 "
                             "/Size [2147483647]")})},
        {"DomainWithoutWidth",
         SpacePage("[/Separation /X /DeviceGray 5 0 R]",
                   {"<< /FunctionType 2 /Domain [0 0] /N 0 /C0 [1] /C1 [0] >>"})},
        {"ColorantsWithoutEnd",
         SpacePage("[/DeviceN [" + Repeated("/A ", 500) + "] /DeviceGray 5 0 R]",
                   {"<< /FunctionType 2 /Domain [0 1] /N 1 >>"})},
        {"IndexedTableTooShort", SpacePage("[/Indexed /DeviceRGB 255 <00>]", {})},
        {"IndexedCountTooGreat", SpacePage("[/Indexed /DeviceRGB 2147483647 <00>]", {})},
        {"WhitePointOfZeros", SpacePage("[/CalGray << /WhitePoint [0 0 0] /Gamma -1 >>]", {})},
        {"PageWithoutBox", PageOf(mark, "", {}, "")},
        {"PageBoxTooGreat", PageOf(mark, "", {}, "/MediaBox [0 0 1e30 1e30]"), false},
        {"PageBoxOfNoNumbers", PageOf(mark, "", {}, "/MediaBox [/a (b) null]")},
        {"PageOfNoArea", PageOf(mark, "", {}, "/MediaBox [10 10 10 10] /UserUnit -3 /Rotate 45")},
        {"UnitTooGreat", PageOf(mark, "", {}, "/MediaBox [0 0 100 100] /UserUnit 1e30"), false},
        {"ContentsThatAreNoStream",
         PdfOf({"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 99 99] /Contents 7 >>"}),
         false},
        {"ContentsThatDoNotInflate",
         PdfOf({"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 99 99] /Contents 4 0 R >>",
                StreamOf("no zlib data at all", "/Filter /FlateDecode")}),
         false},
        {"AnnotationsThatAreNone",
         PageOf(mark, "", {},
                "/MediaBox [0 0 100 100] /Annots [null 7 << >> << /Rect [1] /AP 3 >>]")},
    };
}

struct NameOf {
    template <class Entry>
    std::string operator()(const testing::TestParamInfo<Entry>& entry) const {
        return entry.param.name;
    }
};

/// True when a small square of the page's middle is black.
bool HasMark(const PageImage& page) {
    for (std::size_t y = 0; y + 4 < page.height; ++y) {
        for (std::size_t x = 0; x + 4 < page.width; ++x) {
            if (page.At(x, y, 0) == 0 && page.At(x + 4, y + 4, 0) == 0) {
                return true;
            }
        }
    }
    return false;
}

class Hostile : public testing::TestWithParam<HostilePage> {};

TEST_P(Hostile, GivesAPageThatInterpretersTake) {
    const TemporaryFolder folder;
    const std::string input = folder.File("in.pdf");
    const std::string output = folder.File("out.ps");
    WriteFile(input, GetParam().pdf);
    const ChildResult run = RunTool({input, output});
    ASSERT_EQ(run.exitStatus, kDone) << "signal " << run.signal << "\n"
                                     << run.errors.substr(0, 2000);
    EXPECT_LT(std::filesystem::file_size(output), 4'000'000U);
    const auto drawn = DrawPages(output, {});
    EXPECT_EQ(drawn.complaint.substr(0, 2000), "");
    if (GetParam().markSurvives) {
        ASSERT_EQ(drawn.pages.size(), 1U);
        EXPECT_TRUE(HasMark(drawn.pages.front()));
    }
}

INSTANTIATE_TEST_SUITE_P(Pages, Hostile, testing::ValuesIn(HostilePages()), NameOf());

struct UnreadableFile {
    const char* name;
    std::string bytes;
};

class Unreadable : public testing::TestWithParam<UnreadableFile> {};

TEST_P(Unreadable, IsRefusedWithAMessageAndWithoutAFile) {
    const TemporaryFolder folder;
    const std::string input = folder.File("in.pdf");
    const std::string output = folder.File("out.ps");
    WriteFile(input, GetParam().bytes);
    WriteFile(output, "old");
    const ChildResult run = RunTool({input, output});
    EXPECT_EQ(run.exitStatus, kUnreadable) << "signal " << run.signal << "\n" << run.errors;
    EXPECT_NE(run.errors, "");
    EXPECT_EQ(ReadFile(output), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 2);
}

std::vector<UnreadableFile> UnreadableFiles() {
    return {
        {"Empty", ""},
        {"Text", "This is a letter, not a PDF.\n"},
        {"HeaderAlone", "%PDF-1.7\n"},
        {"PostScript", "%!PS-Adobe-3.0\nshowpage\n"},
        {"Zeros", std::string(100000, '\0')},
        {"Locked", ReadFile(CasePath("encrypted-password"))},
        {"NoPages", PdfOf({"<< /Type /Catalog >>"})},
        {"PagesThatLoop", PdfOf({"<< /Type /Catalog /Pages 2 0 R >>",
                                 "<< /Type /Pages /Parent 2 0 R /Kids [2 0 R 2 0 R] /Count 2 >>"})},
    };
}

INSTANTIATE_TEST_SUITE_P(Files, Unreadable, testing::ValuesIn(UnreadableFiles()), NameOf());

TEST(Truncated, FilesAreDrawnAsFarAsTheyGoOrRefused) {
    const std::string whole = ReadFile(CasePath("separation-sampled"));
    const TemporaryFolder folder;
    const std::string input = folder.File("in.pdf");
    const std::string output = folder.File("out.ps");
    for (std::size_t part = 1; part < 12; ++part) {
        SCOPED_TRACE(part);
        std::filesystem::remove(output);
        WriteFile(input, std::string_view(whole).substr(0, whole.size() * part / 12));
        const ChildResult run = RunTool({input, output});
        ASSERT_TRUE(run.exitStatus == kDone || run.exitStatus == kUnreadable) << run.errors;
        EXPECT_NE(run.errors, "");
        EXPECT_EQ(std::filesystem::exists(output), run.exitStatus == kDone);
        if (run.exitStatus == kDone) {
            EXPECT_EQ(DrawPages(output, {}).complaint, "");
        }
    }
}

TEST(PageTree, ThatLoopsBesideAPageEndsAndKeepsThePage) {
    const TemporaryFolder folder;
    const std::string input = folder.File("in.pdf");
    const std::string output = folder.File("out.ps");
    WriteFile(input, PdfOf({"<< /Type /Catalog /Pages 2 0 R >>",
                            "<< /Type /Pages /Kids [3 0 R 2 0 R null 9 0 R] /Count 1000000 >>",
                            "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 100 100] "
                            "/Contents 4 0 R /Resources << >> >>",
                            StreamOf(kMark)}));
    const ChildResult run = RunTool({input, output});
    ASSERT_EQ(run.exitStatus, kDone) << run.errors;
    const auto drawn = DrawPages(output, {});
    EXPECT_EQ(drawn.complaint, "");
    ASSERT_EQ(drawn.pages.size(), 1U);
    EXPECT_TRUE(HasMark(drawn.pages.front()));
}

TEST(Title, CannotSmuggleInPostScript) {
    const TemporaryFolder folder;
    const std::string input = folder.File("in.pdf");
    const std::string output = folder.File("out.ps");
    std::string pdf = PageOf(kMark, "", {R"(<< /Title (a\)\n%%EOF\nquit ) /Creator (\r/x) >>)"});
    pdf.insert(pdf.rfind("/Root"), "/Info 5 0 R ");
    WriteFile(input, pdf);
    ASSERT_EQ(RunTool({input, output}).exitStatus, kDone);
    const auto drawn = DrawPages(output, {});
    EXPECT_EQ(drawn.complaint, "");
    ASSERT_EQ(drawn.pages.size(), 1U);
    EXPECT_TRUE(HasMark(drawn.pages.front()));
}

}  // namespace
}  // namespace VANTIX::TEST
