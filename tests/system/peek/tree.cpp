#include "tree.h"

#include "remote_block.h"
#include "window.h"

#include <commctrl.h>

namespace peek {
namespace {

using Node = HTREEITEM;

Node next(HWND tree, WPARAM which, Node from)
{
    return reinterpret_cast<Node>(send(tree, TVM_GETNEXTITEM, which, reinterpret_cast<LPARAM>(from)));
}

std::wstring textOf(HWND tree, RemoteBlock& block, Node node)
{
    TVITEMW item{};
    item.mask = TVIF_TEXT;
    item.hItem = node;
    item.pszText = block.textAddress();
    item.cchTextMax = RemoteBlock::kTextRoom;
    block.put(item);
    send(tree, TVM_GETITEMW, 0, block.address());
    return block.text();
}

void printFrom(HWND tree, RemoteBlock& block, Node first, const std::wstring& indent)
{
    for (Node node = first; node != nullptr; node = next(tree, TVGN_NEXT, node)) {
        print(indent + textOf(tree, block, node));
        printFrom(tree, block, next(tree, TVGN_CHILD, node), indent + L"\t");
    }
}

} // namespace

void printTree(HWND tree)
{
    RemoteBlock block(tree);
    printFrom(tree, block, next(tree, TVGN_ROOT, nullptr), {});
}

void printChosenNode(HWND tree)
{
    if (const Node node = next(tree, TVGN_CARET, nullptr)) {
        RemoteBlock block(tree);
        print(textOf(tree, block, node));
    }
}

} // namespace peek
