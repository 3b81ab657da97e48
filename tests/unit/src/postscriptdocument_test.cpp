// SPDX-License-Identifier: MIT
#include "postscriptdocument.h"

#include <gtest/gtest.h>

#include "core/object/tobject.h"
#include "support/fakedictionary.h"
#include "support/fakefactory.h"
#include "support/memoryprovider.h"
#include "support/recordinglogger.h"

namespace VANTIX::PS {
namespace {

using TEST::MemoryProvider;
using TEST::RecordingLogger;
using DocumentPtr = TInterfacePtr<IPostScriptDocument>;

/// Notes where each write ends.
class WriteCounter : public MemoryProvider {
public:
    std::vector<std::size_t> lengths;

    Status Write(const void* buffer, std::size_t length) override {
        lengths.push_back(length);
        return MemoryProvider::Write(buffer, length);
    }
};

class PostscriptDocument : public ::testing::Test {
protected:
    PostscriptDocument() { RecordingLogger::Get().Clear(); }

    TEST::FakeFactory factory;
    WriteCounter stream;
};

TEST_F(PostscriptDocument, AnEmptyJobIsHeaderPrologAndTrailer) {
    const auto document = DocumentPtr::Adopt(CreatePostscriptDocument(stream, &factory, nullptr));
    document->WriteHeader();
    EXPECT_EQ(stream.lengths, (std::vector<std::size_t>{15, 24, 48, 463}));
    EXPECT_EQ(stream.contents.substr(0, 96),
              "%!PS-Adobe-3.0\n"
              "%APL_DSC_Encoding: UTF8\n"
              "<< /AllowTransparency true >>setdistillerparams\n"
              "/AddCMap\n");
    EXPECT_TRUE(stream.contents.ends_with("\n {pop pop}\n ifelse\n} bind def\n"));
    document->WriteTrailer();
    EXPECT_TRUE(stream.contents.ends_with("} bind def\n%%EOF\n"));
    EXPECT_EQ(stream.contents.size(), 556U);
    EXPECT_EQ(stream.flushes, 0);
    EXPECT_TRUE(document->FinishWritingDocument());
    EXPECT_EQ(stream.flushes, 1);
}

TEST_F(PostscriptDocument, KeepsACopyOfItsOptionsAndReferencesToTheRest) {
    TEST::FakeDictionary options;
    options.SetInt(103, 2);
    auto document = DocumentPtr::Adopt(CreatePostscriptDocument(stream, &factory, &options));
    options.SetInt(103, 3);
    std::int32_t level = 0;
    ASSERT_NE(document->GetOptions(), nullptr);
    EXPECT_TRUE(document->GetOptions()->GetInt(103, level));
    EXPECT_EQ(level, 2);
    EXPECT_EQ(stream.AddRef(), 3U);
    EXPECT_EQ(factory.AddRef(), 3U);
    document = nullptr;
    EXPECT_EQ(stream.Release(), 1U);
    EXPECT_EQ(factory.Release(), 1U);
}

TEST_F(PostscriptDocument, WithoutAStreamItWritesNothing) {
    const auto document = DocumentPtr::Adopt(CreatePostscriptDocument(stream, &factory, nullptr));
    EXPECT_EQ(document->GetOptions(), nullptr);
    EXPECT_EQ(document->Init(nullptr, nullptr, &factory, false), STATUS::kOk);
    document->WriteHeader();
    document->WriteTrailer();
    EXPECT_EQ(stream.contents, "");
    EXPECT_TRUE(RecordingLogger::Get().Entries().empty());
    EXPECT_FALSE(document->FinishWritingDocument());
    EXPECT_EQ(RecordingLogger::Get().Messages(), "No mDataProvider\n");
    EXPECT_EQ(document->Init(&stream, nullptr, &factory, true), STATUS::kNotSupported);
}

TEST_F(PostscriptDocument, WithoutAFactoryThereIsNone) {
    EXPECT_EQ(CreatePostscriptDocument(stream, nullptr, nullptr), nullptr);
    EXPECT_EQ(RecordingLogger::Get().Messages(), "No factory\n");
}

}  // namespace
}  // namespace VANTIX::PS
