// SPDX-License-Identifier: MIT
#include "pdf/pagetree.h"

#include <exception>
#include <set>
#include <string>

#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

class Collector {
public:
    std::vector<PageNode> pages;

    // The tree is walked without recursion: hostile ones are as deep as the file is big.
    void Walk(const QPDFObjectHandle& root) {
        std::vector<PageNode> pending{{root, NoAttributes()}};
        while (!pending.empty()) {
            PageNode node = std::move(pending.back());
            pending.pop_back();
            try {
                Visit(node, pending);
            } catch (const std::exception&) {
                continue;  // libqpdf keeps its own word on the damaged object
            }
        }
    }

    static std::array<QPDFObjectHandle, kInheritableKeys.size()> NoAttributes() {
        std::array<QPDFObjectHandle, kInheritableKeys.size()> none;
        none.fill(QPDFObjectHandle::newNull());
        return none;
    }

private:
    void Visit(PageNode& node, std::vector<PageNode>& pending) {
        if (!node.page.isDictionary()) {
            return;
        }
        QPDFObjectHandle kids = Get(node.page, "/Kids");
        if (!kids.isArray() || NameOf(Get(node.page, "/Type")) == "Page") {
            pages.push_back(node);
            return;
        }
        if (node.page.isIndirect() && !mSeen.insert(node.page.getObjGen()).second) {
            return;
        }
        for (std::size_t i = 0; i < kInheritableKeys.size(); ++i) {
            QPDFObjectHandle own = Get(node.page, std::string(kInheritableKeys[i]));
            if (!own.isNull()) {
                node.inherited[i] = own;
            }
        }
        for (int i = kids.getArrayNItems() - 1; i >= 0; --i) {
            pending.push_back({kids.getArrayItem(i), node.inherited});
        }
    }

    std::set<QPDFObjGen> mSeen;
};

}  // namespace

std::vector<PageNode> CollectPages(QPDF& qpdf) {
    Collector collector;
    collector.Walk(Get(qpdf.getRoot(), "/Pages"));
    if (!collector.pages.empty()) {
        return std::move(collector.pages);
    }
    for (const QPDFObjectHandle& object : qpdf.getAllObjects()) {
        if (NameOf(Get(object, "/Type")) == "Page") {
            collector.pages.push_back({object, Collector::NoAttributes()});
        }
    }
    return std::move(collector.pages);
}

}  // namespace VANTIX::PDF
