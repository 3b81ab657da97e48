// SPDX-License-Identifier: MIT
#include "host/fonts/cffstandard.h"

#include <vector>

#include "host/fonts/tablewords.h"

namespace VANTIX::HOST {
namespace {

/// Technical Note 5176, appendix A.
constexpr std::string_view kStrings = R"(
.notdef space exclam quotedbl numbersign dollar percent ampersand quoteright parenleft parenright
asterisk plus comma hyphen period slash zero one two three four five six seven eight nine colon
semicolon less equal greater question at A B C D E F G H I J K L M N O P Q R S T U V W X Y Z
bracketleft backslash bracketright asciicircum underscore quoteleft a b c d e f g h i j k l m n o p
q r s t u v w x y z braceleft bar braceright asciitilde exclamdown cent sterling fraction yen florin
section currency quotesingle quotedblleft guillemotleft guilsinglleft guilsinglright fi fl endash
dagger daggerdbl periodcentered paragraph bullet quotesinglbase quotedblbase quotedblright
guillemotright ellipsis perthousand questiondown grave acute circumflex tilde macron breve dotaccent
dieresis ring cedilla hungarumlaut ogonek caron emdash AE ordfeminine Lslash Oslash OE ordmasculine
ae dotlessi lslash oslash oe germandbls onesuperior logicalnot mu trademark Eth onehalf plusminus
Thorn onequarter divide brokenbar degree thorn threequarters twosuperior registered minus eth
multiply threesuperior copyright Aacute Acircumflex Adieresis Agrave Aring Atilde Ccedilla Eacute
Ecircumflex Edieresis Egrave Iacute Icircumflex Idieresis Igrave Ntilde Oacute Ocircumflex Odieresis
Ograve Otilde Scaron Uacute Ucircumflex Udieresis Ugrave Yacute Ydieresis Zcaron aacute acircumflex
adieresis agrave aring atilde ccedilla eacute ecircumflex edieresis egrave iacute icircumflex
idieresis igrave ntilde oacute ocircumflex odieresis ograve otilde scaron uacute ucircumflex
udieresis ugrave yacute ydieresis zcaron exclamsmall Hungarumlautsmall dollaroldstyle dollarsuperior
ampersandsmall Acutesmall parenleftsuperior parenrightsuperior twodotenleader onedotenleader
zerooldstyle oneoldstyle twooldstyle threeoldstyle fouroldstyle fiveoldstyle sixoldstyle
sevenoldstyle eightoldstyle nineoldstyle commasuperior threequartersemdash periodsuperior
questionsmall asuperior bsuperior centsuperior dsuperior esuperior isuperior lsuperior msuperior
nsuperior osuperior rsuperior ssuperior tsuperior ff ffi ffl parenleftinferior parenrightinferior
Circumflexsmall hyphensuperior Gravesmall Asmall Bsmall Csmall Dsmall Esmall Fsmall Gsmall Hsmall
Ismall Jsmall Ksmall Lsmall Msmall Nsmall Osmall Psmall Qsmall Rsmall Ssmall Tsmall Usmall Vsmall
Wsmall Xsmall Ysmall Zsmall colonmonetary onefitted rupiah Tildesmall exclamdownsmall centoldstyle
Lslashsmall Scaronsmall Zcaronsmall Dieresissmall Brevesmall Caronsmall Dotaccentsmall Macronsmall
figuredash hypheninferior Ogoneksmall Ringsmall Cedillasmall questiondownsmall oneeighth
threeeighths fiveeighths seveneighths onethird twothirds zerosuperior foursuperior fivesuperior
sixsuperior sevensuperior eightsuperior ninesuperior zeroinferior oneinferior twoinferior
threeinferior fourinferior fiveinferior sixinferior seveninferior eightinferior nineinferior
centinferior dollarinferior periodinferior commainferior Agravesmall Aacutesmall Acircumflexsmall
Atildesmall Adieresissmall Aringsmall AEsmall Ccedillasmall Egravesmall Eacutesmall Ecircumflexsmall
Edieresissmall Igravesmall Iacutesmall Icircumflexsmall Idieresissmall Ethsmall Ntildesmall
Ogravesmall Oacutesmall Ocircumflexsmall Otildesmall Odieresissmall OEsmall Oslashsmall Ugravesmall
Uacutesmall Ucircumflexsmall Udieresissmall Yacutesmall Thornsmall Ydieresissmall 001.000 001.001
001.002 001.003 Black Bold Book Light Medium Regular Roman Semibold
)";

/// Strings with numbers that follow each other.
struct Run {
    std::uint16_t first;
    std::uint16_t count;
};

// Appendix C.
constexpr Run kISOAdobe[] = {{0, 229}};
constexpr Run kExpert[] = {{0, 2},    {229, 10}, {13, 3},   {99, 1},  {239, 10}, {27, 2},
                           {249, 18}, {109, 2},  {267, 52}, {158, 1}, {155, 1},  {163, 1},
                           {319, 8},  {150, 1},  {164, 1},  {169, 1}, {327, 52}};
constexpr Run kExpertSubset[] = {{0, 2},   {231, 2}, {235, 4},  {13, 3},  {99, 1},  {239, 10},
                                 {27, 2},  {249, 3}, {253, 14}, {109, 2}, {267, 4}, {272, 1},
                                 {300, 3}, {305, 1}, {314, 2},  {158, 1}, {155, 1}, {163, 1},
                                 {320, 7}, {150, 1}, {164, 1},  {169, 1}, {327, 20}};

struct CodeRun {
    std::uint8_t code;
    Run strings;
};

// Appendix B.
constexpr CodeRun kExpertEncoding[] = {
    {32, {1, 1}},    {33, {229, 2}},  {36, {231, 8}},  {44, {13, 3}},   {47, {99, 1}},
    {48, {239, 10}}, {58, {27, 2}},   {60, {249, 4}},  {65, {253, 5}},  {73, {258, 1}},
    {76, {259, 4}},  {82, {263, 3}},  {86, {266, 1}},  {87, {109, 2}},  {89, {267, 3}},
    {93, {270, 34}}, {161, {304, 3}}, {166, {307, 5}}, {172, {312, 1}}, {175, {313, 1}},
    {178, {314, 2}}, {182, {316, 3}}, {188, {158, 1}}, {189, {155, 1}}, {190, {163, 1}},
    {191, {319, 7}}, {200, {326, 1}}, {201, {150, 1}}, {202, {164, 1}}, {203, {169, 1}},
    {204, {327, 52}}};

}  // namespace

std::string_view CffStandardString(std::size_t number) {
    static const std::vector<std::string_view> kWords = [] {
        std::vector<std::string_view> words;
        TableWords table(kStrings);
        while (words.size() < kCffStandardStrings) {
            words.push_back(table.Next());
        }
        return words;
    }();
    return number < kWords.size() ? kWords[number] : std::string_view();
}

std::vector<std::uint16_t> CffPredefinedCharset(std::size_t number) {
    const std::span<const Run> kCharsets[] = {kISOAdobe, kExpert, kExpertSubset};
    std::vector<std::uint16_t> strings;
    for (const Run& run : kCharsets[number]) {
        for (std::uint16_t i = 0; i < run.count; ++i) {
            strings.push_back(static_cast<std::uint16_t>(run.first + i));
        }
    }
    return strings;
}

std::array<std::uint16_t, 256> CffExpertEncoding() {
    std::array<std::uint16_t, 256> strings{};
    for (const CodeRun& run : kExpertEncoding) {
        for (std::size_t i = 0; i < run.strings.count; ++i) {
            strings.at(run.code + i) = static_cast<std::uint16_t>(run.strings.first + i);
        }
    }
    return strings;
}

}  // namespace VANTIX::HOST
