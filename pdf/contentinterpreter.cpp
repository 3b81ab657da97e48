// SPDX-License-Identifier: MIT
#include "pdf/contentinterpreter.h"

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

#include "pdf/objects.h"
#include "pdf/operators.h"

namespace VANTIX::PDF {

namespace {

// A host that refuses a level would fall out of step.
constexpr std::size_t kMaxDepth = HOST::GraphicsState::kMaxLevels - 2;

}  // namespace

ContentInterpreter::ScopedLevel::ScopedLevel(ContentInterpreter& interpreter)
    : mInterpreter(interpreter), mDepth(interpreter.mLevels.size()), mSaved(interpreter.Save()) {}

ContentInterpreter::ScopedLevel::~ScopedLevel() {
    mInterpreter.RestoreTo(mDepth);
}

ContentInterpreter::ContentInterpreter(PlayContext& context) : mContext(context) {
    Level first;
    first.fillSpace = first.strokeSpace = mContext.colorSpaces.Named("DeviceGray", {});
    mLevels.push_back(first);
}

bool ContentInterpreter::Save() {
    if (mContext.space.State().Depth() >= kMaxDepth) {
        mContext.reporter.Warn("nesting", "Graphics states are nested too deep");
        return false;
    }
    mLevels.emplace_back(Level(mLevels.back()));
    mContext.space.SaveGraphicsState();
    return true;
}

void ContentInterpreter::RestoreTo(std::size_t depth) {
    while (mLevels.size() > depth) {
        const bool endsMask = mBegunMask && mBegunMask->depth == mLevels.size();
        if (endsMask) {
            CloseTextObject();
        }
        mLevels.pop_back();
        mClips.resize(Top().clips);
        mContext.space.RestoreGraphicsState();
        if (endsMask) {
            mOrigin = mBegunMask->outer;
            mBegunMask.reset();
        }
    }
}

ContentInterpreter::Player::Player(ContentInterpreter& interpreter, Resources& resources)
    : mInterpreter(interpreter), mOuter(std::exchange(interpreter.mFrame, {})) {
    interpreter.mFrame.resources = &resources;
    interpreter.mFrame.floor = interpreter.mLevels.size();
    interpreter.mFrame.matrix = interpreter.Top().matrix;
    interpreter.mPath.Clear();
    interpreter.mPendingClip = PendingClip::kNone;
}

ContentInterpreter::Player::~Player() {
    mInterpreter.CloseTextObject();
    mInterpreter.RestoreTo(mInterpreter.mFrame.floor);
    mInterpreter.mPath.Clear();
    mInterpreter.mPendingClip = PendingClip::kNone;
    mInterpreter.mFrame = std::move(mOuter);
}

void ContentInterpreter::Player::Add(std::string_view piece) {
    mPending.append(piece);
    if (mPending.size() >= mNextRun) {
        Run(mPending, false);
    }
}

void ContentInterpreter::Player::Finish(std::string_view content) {
    if (mPending.empty()) {
        Run(content, true);
    } else {
        mPending.append(content);
        Run(mPending, true);
    }
}

void ContentInterpreter::Player::Run(std::string_view content, bool isComplete) {
    ContentParser parser(content, isComplete);
    mInterpreter.mFrame.parser = &parser;
    for (bool more = true; more;) {
        try {
            while (parser.Next()) {
                mInterpreter.Execute(parser);
            }
            more = false;
        } catch (const std::exception& failure) {
            mInterpreter.mContext.reporter.Warn("bad-operator", failure.what());
        }
    }
    mInterpreter.mFrame.parser = nullptr;
    if (!isComplete) {
        mPending.erase(0, parser.Consumed());
        mNextRun = kWindow + 2 * mPending.size();
    }
}

void ContentInterpreter::Execute(ContentParser& parser) {
    const Operators::Entry* entry = FindOperator(parser.Operator());
    if (entry == nullptr) {
        if (mFrame.compatibility == 0) {
            mContext.reporter.Warn("bad-operator",
                                   "Unknown operator " + std::string(parser.Operator()));
        }
        return;
    }
    if (entry->numbers > 0 && !TakeNumbers(entry->numbers)) {
        BadOperands();
        return;
    }
    (this->*entry->handler)(mNumbers.data());
}

// The last operands count, as on an interpreter's stack.
bool ContentInterpreter::TakeNumbers(std::size_t count) {
    const std::vector<Operand>& operands = Operands();
    if (operands.size() < count || !mFrame.parser->OperandsAreFlat()) {
        return false;
    }
    const Operand* operand = operands.data() + (operands.size() - count);
    for (std::size_t i = 0; i < count; ++i, ++operand) {
        if (operand->kind != OperandKind::kNumber) {
            return false;
        }
        mNumbers[i] = ToFloat(operand->number);
    }
    return true;
}

std::optional<std::string_view> ContentInterpreter::LastName() {
    const std::vector<Operand>& operands = Operands();
    if (operands.empty() || operands.back().kind != OperandKind::kName) {
        BadOperands();
        return std::nullopt;
    }
    return operands.back().text;
}

void ContentInterpreter::BadOperands() {
    mContext.reporter.Warn("bad-operator",
                           "Bad operands of " + std::string(mFrame.parser->Operator()));
}

}  // namespace VANTIX::PDF
