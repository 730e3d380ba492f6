#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "app/Form1.h"
#include "platform/NodeKeys.h"
#include "platform/RuntimeError.h"
#include "platform/Text.h"
#include "support/CoreSupport.h"
#include "table/RowOps.h"

namespace vkl {
namespace {

namespace fs = std::filesystem;
using Keys = std::vector<std::string>;

constexpr Color kDefaultCell = rgb(250, 250, 250);

// The tree's view: the node the test put at a height is under the pointer there.
class FakePort : public TreeViewPort {
  public:
    std::map<double, std::string> at;
    std::vector<int> scrolls;
    std::string hitTest(double, double y) const override {
        const auto it = at.find(y);
        return it == at.end() ? std::string() : it->second;
    }
    void scrollLine(int request) override { scrolls.push_back(request); }
    double heightTwips() const override { return 4000; }
};

// A window with a view whose pointer finds the nodes the test put at heights.
struct Window : test::Window {
    explicit Window(const Keys& outline = {}, const std::string& installDir = "/opt/b")
        : test::Window(outline, installDir) {
        form.defaultCellColor = kDefaultCell;
        form.treePort = &port;
    }
    TreeNodes& tree() { return form.Treeview; }
    FakePort port;
};

TEST(TreeCommands, AddSubmenuContinuesTheSerialsAndPlacesByRelationship) {
    Window w({"M", " Through", "M", " Saw"});  // as a file with two submenus leaves it
    w.form.treeEvents.currentNodeKey = "Menu1";
    for (int i = 0; i < 3; ++i) {
        w.form.menuClick("addsub");
    }
    EXPECT_EQ(test::shape(w.tree()), "Menu0{Menu1{Child1 Menu3 Menu4 Menu5} Menu2{Child2}}");
    EXPECT_EQ(w.tree().text(w.node("Menu4")) + w.tree().image(w.node("Menu4")), "MENUfolderclosed");
    EXPECT_EQ(w.form.treeEvents.currentNodeKey, "Menu1");

    w.form.treeEvents.currentNodeKey = "Child1";
    for (const char* entry : {"addabove1", "addabove2", "addbelow2"}) {
        w.form.menuClick(entry);
    }
    EXPECT_EQ(test::shape(w.tree()),
              "Menu0{Menu1{Menu6 Menu7 Child1 Menu8 Menu3 Menu4 Menu5} Menu2{Child2}}");

    w.form.treeEvents.currentNodeKey = "Menu99";  // a key naming no node raises the control's error
    EXPECT_EQ(test::errorOf([&] { w.form.menuClick("addsub"); }),
              RuntimeError::elementNotFound().number());
}

// Folders: RemovingAFolderEqualsPurgingAtTheEndOfEveryLevel below.
TEST(TreeCommands, RemovingAnItemDeletesItsRowOnly) {
    // An item goes alone with its row whatever the command; nested rows stay without nodes.
    for (const char* entry : {"remove1", "remove2", "removechilden"}) {
        Window item({"top", " nested", "  deeper", "next"});
        item.form.treeEvents.currentNodeKey = "Child1";
        item.form.menuClick(entry);
        EXPECT_EQ(item.cell(1, 1) + item.cell(2, 1) + item.cell(3, 1), "nesteddeepernext");
        EXPECT_EQ(test::shape(item.tree()) + text::str(item.form.Table.rows()), "Menu0{Child3}4")
            << entry;
    }
}

// The marking done literally: paint a level, purge at its end, innermost levels first.
void markLiterally(Form1& f, NodeRef node) {
    std::vector<NodeRef> kids;
    for (NodeRef c = f.Treeview.child(node); !c.isNull(); c = f.Treeview.next(c)) {
        kids.push_back(c);
    }
    for (const NodeRef c : kids) {
        if (!f.Treeview.alive(c)) {
            continue;  // purged with a level before
        }
        if (keys::isItem(f.Treeview.key(c))) {
            const int r = static_cast<int>(keys::rowOf(f.Treeview.key(c)));
            f.Table.setRow(r);
            for (int col = 0; col < f.Table.cols(); ++col) {
                f.Table.setCol(col);
                f.Table.setBackColorAt(r, col, f.markingColor);
            }
            f.Table.setCol(0);
        }
        if (f.Treeview.children(c) > 0) {
            markLiterally(f, c);
        }
    }
    table::deleteMarkedLines(f.Table, f.Treeview, f.markingColor, f.defaultCellColor,
                             f.normalColor);
}

// A random menu: items may hold items, keys name rows in random order, some lines are marked by
// the user beforehand and some rows have no node. Returns the command value to use.
int randomMenu(Window& w, unsigned seed) {
    std::mt19937 rng(seed);
    auto pick = [&](size_t n) { return static_cast<size_t>(rng() % n); };
    const size_t nodes = 1 + pick(40);
    const int rows = static_cast<int>(nodes + pick(4));
    std::vector<int> order;
    for (int r = 1; r <= rows; ++r) {
        w.form.Table.setTextMatrix(w.form.Table.appendRow(), 1, "line" + text::str(r));
        if (pick(6) == 0) {
            for (int c = 0; c < Grid::kCols; ++c) {
                w.form.Table.setBackColorAt(r, c, w.form.markingColor);
            }
        }
        order.push_back(r);
    }
    std::shuffle(order.begin(), order.end(), rng);
    std::vector<NodeRef> all{w.node("Menu0")};
    Keys folders{"Menu0"};
    for (size_t i = 0, items = 0; i < nodes; ++i) {
        const NodeRef parent = all[pick(all.size())];
        if (pick(3) == 0 || items == order.size()) {
            folders.push_back(keys::folder(++w.form.tree.nodeSerial));
            all.push_back(w.tree().add(parent, TreeNodes::kChild, folders.back(), "SUB"));
        } else {
            all.push_back(w.tree().add(parent, TreeNodes::kChild, keys::item(order[items++]), "I"));
        }
    }
    w.form.Table.setRow(1 + static_cast<int>(pick(static_cast<size_t>(rows))));
    w.form.treeEvents.currentNodeKey = folders[pick(folders.size())];
    return static_cast<int>(pick(2));
}

TEST(TreeCommands, RemovingAFolderEqualsPurgingAtTheEndOfEveryLevel) {
    for (unsigned seed = 1; seed <= 400; ++seed) {
        Window fast;
        Window literal;
        const int value = randomMenu(fast, seed);
        randomMenu(literal, seed);
        const int error =
            test::errorOf([&] { fast.form.menuClick(value == 1 ? "remove2" : "removechilden"); });
        ASSERT_EQ(
            error, test::errorOf([&] {
                const NodeRef n = literal.node(literal.form.treeEvents.currentNodeKey);
                if (literal.tree().children(n) > 0) {
                    markLiterally(literal.form, n);
                }
                if (value == 1) {
                    literal.tree().remove(literal.node(literal.form.treeEvents.currentNodeKey));
                }
            }))
            << "seed " << seed;
        ASSERT_EQ(test::dump(fast.form.Table, fast.tree()),
                  test::dump(literal.form.Table, literal.tree()))
            << "seed " << seed;
    }
}

TEST(TreeCommands, AddImageGrowsTheBitmapListToTheClickedFolder) {
    Window w({"M", " a"});
    Form1& f = w.form;
    f.treeEvents.currentNodeKey = "Menu1";
    f.treeEvents.currentSubmenuSerial = 5;
    f.tree.submenuBitmaps = {"", "", "two.bmp"};
    f.tree.highestBitmapSerial = 2;
    f.Imagedir.text = "/data/images";
    w.host.openAnswers = {{}, test::ScriptedHost::pick("/data/images/F.bmp")};
    f.menuClick("addimage");  // cancelled
    EXPECT_EQ(f.tree.submenuBitmaps.size(), 3u);
    EXPECT_EQ(w.tree().image(w.node("Menu1")), "folderclosed");

    f.menuClick("addimage");
    const FileDialog& d = w.host.openRequests[1];
    EXPECT_EQ(d.filter + std::to_string(d.filterIndex) + d.initialDir,
              "All Files (*.*)|*.*|Bmp Files (*.bmp)|*.bmp2/data/images");
    EXPECT_EQ(f.tree.submenuBitmaps, (Keys{"", "", "two.bmp", "", "", "/data/images/F.bmp"}));
    EXPECT_EQ(f.tree.highestBitmapSerial, 5);
    EXPECT_EQ(w.tree().image(w.node("Menu1")), "image_here");

    // On an item: its image changes, the path goes to the folder clicked last.
    f.treeEvents.currentNodeKey = "Child1";
    f.treeEvents.currentSubmenuSerial = 1;
    w.host.openAnswers = {test::ScriptedHost::pick("/x/y.bmp")};
    f.menuClick("addimage");
    EXPECT_EQ(f.tree.submenuBitmaps[1] + std::to_string(f.tree.highestBitmapSerial), "/x/y.bmp5");
    EXPECT_EQ(w.tree().image(w.node("Child1")), "image_here");
}

TEST(TreeEvents, ItemClickScrollsToTheLineAndMovesTheHighlight) {
    Keys outline(21, " line");
    outline[0] = "M";
    Window w(outline);
    Form1& f = w.form;
    f.treeviewNodeClick("Child11");
    EXPECT_EQ(w.colors(11) + text::str(f.Table.topRow()), "HHHHHHH6");
    EXPECT_EQ(f.treeEvents.treeSelected, w.node("Child11"));

    f.treeviewNodeClick("Child10");
    EXPECT_EQ(w.colors(11) + w.colors(10) + text::str(f.Table.topRow()), "dddddddHHHHHHH1");
    EXPECT_EQ(f.treeEvents.selectedRow, 10);

    f.Table.setBackColorAt(15, 1, f.highlightColor);  // the last highlighted line counts
    f.treeviewNodeClick("Menu1");
    EXPECT_EQ(f.treeEvents.selectedRow, 15);
    EXPECT_EQ(w.colors(15) + w.colors(10), "dddddddHHHHHHH");
    EXPECT_EQ(f.treeEvents.currentSubmenuSerial, 1);
    EXPECT_TRUE(w.host.messages.empty());  // no bitmap entry: nothing shown
}

TEST(TreeEvents, MouseDownOpensThePopupOfTheNodeKind) {
    Window w({"M", " item", "M"});
    Form1& f = w.form;
    w.port.at = {{10, "Menu0"}, {20, "Menu1"}, {30, "Child1"}, {40, "Menu2"}};
    f.treeviewMouseDown(2, 0, 0, 99);  // nothing under the pointer
    f.treeviewMouseDown(1, 0, 0, 10);
    EXPECT_TRUE(f.Treeview.expanded(w.node("Menu0")));
    EXPECT_TRUE(w.host.popups.empty());

    w.host.popupAnswers = {"addsub"};
    f.treeviewMouseDown(2, 0, 0, 10);
    EXPECT_EQ(test::shape(w.tree()), "Menu0{Menu1{Child1} Menu2 Menu3}");  // ran on the root
    f.treeviewMouseDown(2, 0, 0, 30);
    EXPECT_EQ(f.treeEvents.popupNode, w.node("Child1"));
    EXPECT_EQ(f.treeEvents.currentNodeKey, "Child1");
    f.treeviewMouseDown(2, 0, 0, 40);
    EXPECT_EQ(f.treeEvents.currentSubmenuSerial, 2);
    f.treeviewMouseDown(1, 0, 0, 20);
    EXPECT_EQ(f.treeEvents.treeSelected, w.node("Menu1"));
    EXPECT_EQ(w.host.popups, (Keys{"Menu1", "Menu2", "menu3"}));
    EXPECT_EQ(f.treeEvents.currentSubmenuSerial, 2);  // a left press leaves it
}

// Where a drop moves nodes: the window's tree tests.
TEST(TreeEvents, DropMakesTheNodeUnderThePointerCurrent) {
    Window w({"M", " a"});
    w.port.at = {{1, "Child1"}};
    w.form.treeviewStartDrag();
    w.form.treeviewDragDrop("Menu1", 0, 1);
    EXPECT_EQ(w.form.treeEvents.currentNodeKey, "Child1");
}

TEST(TreeEvents, DragOverScrollsInTheEdgeBandsOnly) {
    Window w({"a"});
    Form1& f = w.form;
    w.port.at = {
        {0, "Child1"}, {50, "Child1"}, {150, "Child1"}, {3850, "Child1"}, {4000, "Child1"}};
    EXPECT_EQ(f.treeviewDragOver(0, 50), 0);  // no drag from the tree
    f.treeviewStartDrag();
    EXPECT_EQ(f.treeviewDragOver(0, 50), 2);
    EXPECT_TRUE(f.Timer1.enabled);
    EXPECT_EQ(f.treeEvents.scrollDirection, -1);
    f.treeEvents.treeDropHighlight = {};
    f.timer1Tick();
    EXPECT_EQ(f.treeEvents.treeDropHighlight, w.node("Child1"));  // under the last position
    EXPECT_EQ(f.treeviewDragOver(0, 150), 2);
    EXPECT_FALSE(f.Timer1.enabled);
    f.treeviewDragOver(0, 3850);
    EXPECT_TRUE(f.Timer1.enabled);
    f.timer1Tick();
    for (double y : {0.0, 4000.0}) {
        f.treeviewDragOver(0, y);
        EXPECT_FALSE(f.Timer1.enabled) << y;
    }
    EXPECT_EQ(w.port.scrolls, (std::vector<int>{0, 1}));
}

TEST(TreeViews, ExpandCollapseAndMenusOnly) {
    Window w({"M", " a", "M", " M", " c", "x", " y"});
    TreeNodes& t = w.tree();
    t.setExpanded(w.node("Child3"), true);  // an item holding an item stays as it is
    const auto open = [&] {
        std::string s;
        for (const char* key : {"Menu0", "Menu1", "Menu2", "Child3"}) {
            s += t.expanded(w.node(key)) ? "+" : "-";
        }
        return s;
    };
    w.form.expandClick();
    EXPECT_EQ(open(), "++++");
    EXPECT_EQ(w.form.treeEvents.currentNodeKey, "Child4");  // the last node in index order
    w.form.colapseClick();
    EXPECT_EQ(open(), "---+");
    w.form.onlymenusClick();
    EXPECT_EQ(open(), "+-++");  // Menu1 holds items only

    // The children's index range decides: Menu5, created between the two children of Menu4,
    // opens Menu4 without being its child.
    t.add("Menu1", TreeNodes::kChild, "Menu4", "A", "folderclosed");
    t.add("Menu4", TreeNodes::kChild, "Child8", "A1");
    t.add("Menu0", TreeNodes::kChild, "Menu5", "B", "folderclosed");
    t.add("Menu4", TreeNodes::kChild, "Child9", "A2");
    w.form.onlymenusClick();
    EXPECT_TRUE(t.expanded(w.node("Menu4")));
}

// Whether two names stand for one file: on Windows the lowered name is that file already.
bool sameFile(const std::string& a, const fs::path& b) {
    std::error_code ec;
    return fs::equivalent(fs::path(a), b, ec);
}

TEST(TreeEvents, NodeClickShowsTheBitmapFoundOnDiskWithoutRegardToCase) {
    test::TempDir temp;
    const fs::path root = temp.file("b");
    fs::create_directories(root / "Sub");
    test::writeBmp((root / "Sub" / "File.bmp").string(), 3, 2);
    test::writeBmp((root / "TWO.BMP").string(), 6, 7);
    Window w({"M", "one", "two", "three"}, root.string());
    Form1& f = w.form;
    const std::string install = text::replaceAll(root.string(), "/", "\\");
    const char* cells[][2] = {{"File", "[INSTALLDIR]/Sub/File.bmp"},
                              {"Gone", "[installdir]/Sub/Gone.bmp"},
                              {"", "[installdir]/two.bmp"}};
    for (int r = 1; r <= 3; ++r) {
        f.Table.setTextMatrix(r, 2, cells[r - 1][0]);
        f.Table.setTextMatrix(r, 5, cells[r - 1][1]);
    }
    f.treeviewNodeClick("Child1");
    EXPECT_TRUE(sameFile(f.preview.picture, root / "Sub" / "File.bmp")) << f.preview.picture;
    EXPECT_TRUE(f.preview.shown);
    EXPECT_EQ(f.preview.pictureWidth, 3);

    f.treeviewNodeClick("Child2");  // missing: the path as computed; the picture stays
    EXPECT_EQ(w.host.boxes(), "BMP File not found !\r\r\n'" + install + "\\sub\\gone.bmp'\n");
    EXPECT_TRUE(sameFile(f.preview.picture, root / "Sub" / "File.bmp")) << f.preview.picture;

    f.treeviewNodeClick("Child3");  // no bitmap name: nothing, whatever column 5 holds
    EXPECT_EQ(w.host.messages.size(), 1u);
    f.tree.submenuBitmaps = {"", "[installdir]/two.bmp"};
    f.treeviewNodeClick("Menu1");
    EXPECT_TRUE(sameFile(f.preview.picture, root / "TWO.BMP")) << f.preview.picture;
    EXPECT_EQ(f.preview.pictureHeight, 7);
}

}  // namespace
}  // namespace vkl
