// SPDX-License-Identifier: MIT
#include "pdf/pageplayer.h"

#include <algorithm>
#include <exception>

#include "pdf/annotations.h"
#include "pdf/colorspaces.h"
#include "pdf/contentinterpreter.h"
#include "pdf/fonts/fonts.h"
#include "pdf/forms.h"
#include "pdf/imagedata.h"
#include "pdf/objects.h"
#include "pdf/optionalcontent.h"
#include "pdf/resources.h"
#include "pdf/shadings.h"

namespace VANTIX::PDF {

namespace {

FontOptions FontOptionsOf(const ReaderOptions& options) {
    FontOptions fonts = options.fonts;
    fonts.keepsHiddenText = options.keepsHiddenText;
    return fonts;
}

}  // namespace

struct PagePlayer::Parts {
    Parts(PdfDocument& theDocument, HOST::Host& host, HOST::BaseConnectionSpace& space,
          const ReaderOptions& theOptions, Diagnostics& diagnostics)
        : document(theDocument),
          options(theOptions),
          reporter(diagnostics),
          colorSpaces(host.ColorSpaces(), space,
                      {theOptions.languageLevel, theOptions.embedProfiles}, reporter),
          optionalContent(theDocument.Qpdf()),
          forms(colorSpaces, reporter),
          shadings(colorSpaces, reporter),
          patterns(colorSpaces, shadings, forms, reporter),
          fonts(FontOptionsOf(theOptions), reporter),
          context{space,
                  colorSpaces,
                  optionalContent,
                  forms,
                  imageData,
                  shadings,
                  patterns,
                  fonts,
                  transparency,
                  lostTransparency,
                  openStreams,
                  reporter,
                  theOptions.intent,
                  theOptions.keepsAlpha,
                  theOptions.languageLevel,
                  theOptions.graysAsPalettes,
                  theOptions.keepsHiddenText} {
        patterns.SetCellPlayer(
            [this](const PatternCell& cell, HOST::BaseConnectionSpace& recording) {
                recording.Aggregate(&fonts.Broker(), GRAPHICS::IID_IFONTBROKER);
                PlayContext inner = context.For(recording, openStreams);
                // What sets no colour cannot be in a group, which begins with one.
                inner.keepsAlpha = inner.keepsAlpha && cell.isColored && !options.opaqueCells;
                ContentInterpreter::PlayCell(inner, cell);
            });
        // A glyph is recorded wherever the fonts are loaded, which it is not a part of.
        fonts.SetGlyphPlayer([this](const Type3Font& font, const GlyphDescription& glyph,
                                    HOST::BaseConnectionSpace& recording) {
            colorSpaces.ServeRecording(recording);
            recording.Aggregate(&fonts.Broker(), GRAPHICS::IID_IFONTBROKER);
            OpenStreams open;
            PlayContext inner = context.For(recording, open);
            inner.keepsAlpha = false;
            ContentInterpreter::PlayGlyph(inner, font, glyph);
        });
    }

    void PlayContent(ContentInterpreter& interpreter, int index, Resources& resources);
    void PlayPage(int index);
    void SetUpPage(ContentInterpreter& interpreter, const PageGeometry& geometry);
    void PlayAnnotations(ContentInterpreter& interpreter, int index, Resources& resources);

    PdfDocument& document;
    ReaderOptions options;
    Reporter reporter;
    ColorSpaces colorSpaces;
    OptionalContent optionalContent;
    FormCache forms;
    ImageDataReader imageData;
    Shadings shadings;
    Patterns patterns;
    Fonts fonts;
    TransparencySurvey transparency;
    LostTransparency lostTransparency;
    OpenStreams openStreams;
    PlayContext context;
};

PagePlayer::PagePlayer(PdfDocument& document, HOST::Host& host, HOST::BaseConnectionSpace& space,
                       const ReaderOptions& options, Diagnostics& diagnostics)
    : mParts(std::make_unique<Parts>(document, host, space, options, diagnostics)) {}

PagePlayer::~PagePlayer() = default;

bool PagePlayer::CollectFonts(const std::vector<int>& pages, std::string& error) {
    Fonts& fonts = mParts->fonts;
    for (const int page : pages) {
        mParts->reporter.SetPage(page + 1);
        fonts.Collect(mParts->document, page);
    }
    mParts->reporter.SetPage(0);
    mParts->context.space.Aggregate(&fonts.Broker(), GRAPHICS::IID_IFONTBROKER);
    return fonts.Finish(error);
}

void PagePlayer::Play(int index) {
    mParts->reporter.SetPage(index + 1);
    try {
        mParts->PlayPage(index);
        mParts->document.ReportWarnings(index + 1);
    } catch (const std::exception& failure) {
        mParts->reporter.Warn("damaged", failure.what());
    }
    mParts->reporter.SetPage(0);
}

const std::set<std::string>& PagePlayer::ColorSpaceNames() const {
    return mParts->colorSpaces.UsedNames();
}

const std::vector<FontRecord>& PagePlayer::FontRecords() const {
    return mParts->fonts.Records();
}

// The streams of an array make one content: operators may go on from one to the next.
void PagePlayer::Parts::PlayContent(ContentInterpreter& interpreter, int index,
                                    Resources& resources) {
    const ContentInterpreter::ScopedLevel level(interpreter);
    ContentInterpreter::Player player(interpreter, resources);
    QPDFObjectHandle contents = document.Attribute(index, "/Contents");
    const bool isArray = contents.isArray();
    const int count = isArray ? contents.getArrayNItems() : (contents.isNull() ? 0 : 1);
    std::size_t room = kLargestContent;
    const auto play = [&](std::string_view piece) {
        room -= piece.size();
        player.Add(piece);
    };
    for (int i = 0; i < count; ++i) {
        const QPDFObjectHandle stream = isArray ? contents.getArrayItem(i) : contents;
        const StreamResult result = PipeContent(stream, room, play);
        ReportStream(result, "Page content", reporter);
        if (result == StreamResult::kTooLarge) {
            break;
        }
        player.Add("\n");
    }
    player.Finish();
}

void PagePlayer::Parts::SetUpPage(ContentInterpreter& interpreter, const PageGeometry& geometry) {
    std::array<double, 6> matrix{};
    std::copy(geometry.matrix.begin(), geometry.matrix.end(), matrix.begin());
    interpreter.Concat(matrix);
    context.space.SaveInitialPageMatrix();
    patterns.BeginPage(geometry);
    interpreter.BeginPage();
    std::array<double, 4> box{};
    std::copy(geometry.box.begin(), geometry.box.end(), box.begin());
    interpreter.ClipToBox(box);
}

void PagePlayer::Parts::PlayPage(int index) {
    Resources resources(document.Attribute(index, "/Resources"), colorSpaces);
    ContentInterpreter interpreter(context);
    const ContentInterpreter::ScopedLevel page(interpreter);
    SetUpPage(interpreter, document.Geometry(index, options.box));
    interpreter.DrawPage(document.Attribute(index, "/Group"),
                         document.Attribute(index, "/Resources"), [&] {
                             PlayContent(interpreter, index, resources);
                             PlayAnnotations(interpreter, index, resources);
                         });
    lostTransparency.Report(reporter, options.keepsAlpha);
}

void PagePlayer::Parts::PlayAnnotations(ContentInterpreter& interpreter, int index,
                                        Resources& resources) {
    for (const Appearance& appearance :
         PrintedAppearances(document.Attribute(index, "/Annots"), optionalContent)) {
        const ContentInterpreter::ScopedLevel level(interpreter);
        if (level.IsSaved() && interpreter.Concat(appearance.matrix)) {
            interpreter.DrawForm(appearance.form, resources);
        }
    }
}

}  // namespace VANTIX::PDF
