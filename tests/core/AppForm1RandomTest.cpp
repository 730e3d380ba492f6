// Long random sequences of the handlers the window calls, on generated menus. After every step
// the table and the tree still belong together, and nothing but a run-time error (which ends
// the program, so the run ends too) leaves a handler. VKL_RANDOM_RUNS sets how many runs.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "app/Form1.h"
#include "platform/NodeKeys.h"
#include "platform/Text.h"
#include "support/CoreSupport.h"

namespace vkl {
namespace {

// Answers every question and dialog at random from what the run has made.
class RandomHost : public test::ScriptedHost {
  public:
    explicit RandomHost(std::mt19937& rng) : rng_(rng) {}
    std::vector<std::string> files;  // menus, bitmaps and packages to choose from

    Answer msgBox(const MessageBox& box) override {
        messages.push_back(box);
        return box.buttons != Buttons::YesNo ? Answer::Ok : pick({Answer::Yes, Answer::No});
    }
    ChosenFile openDialog(const FileDialog&) override { return choose(); }
    ChosenFile saveDialog(const FileDialog&) override { return choose(); }
    std::string browseForFolder(const std::string&) override { return pick({"", "C:\\data"}); }
    // An entry of the pop-up menu shown, or none.
    std::string popupMenu(const std::string& menu) override {
        const std::string m = text::lower(menu);
        return m == "menu1" ? pick({"", "addsub"})
               : m == "menu2"
                   ? pick({"", "addabove1", "remove1"})
                   : pick({"", "addabove2", "addbelow2", "remove2", "removechilden", "addimage"});
    }
    PictureSize loadPicture(const std::string&) override { return {16, 16}; }

  private:
    template <typename T>
    T pick(std::initializer_list<T> from) {
        return from.begin()[rng_() % from.size()];
    }
    ChosenFile choose() {
        return files.empty() || rng_() % 4 == 0 ? ChosenFile{}
                                                : ScriptedHost::pick(files[rng_() % files.size()]);
    }

    std::mt19937& rng_;
};

// A tree port that finds nodes by their position in the index order, one line per node.
class IndexPort : public TreeViewPort {
  public:
    explicit IndexPort(const TreeNodes& nodes) : nodes_(nodes) {}
    std::string hitTest(double, double y) const override {
        const int index = 1 + static_cast<int>(y / 240);
        return index >= 1 && index <= nodes_.count() ? nodes_.key(nodes_.byIndex(index))
                                                     : std::string();
    }
    void scrollLine(int) override {}
    double heightTwips() const override { return 4000; }

  private:
    const TreeNodes& nodes_;
};

// A menu of random submenus, items and lines the reader skips.
std::string randomMenu(std::mt19937& rng) {
    static const char* const actions[] = {"F", "D", "P", "LOS", "lwm", "LMM", "S", "s", ""};
    std::vector<std::string> body;
    if (rng() % 3 == 0) {
        body.push_back(rng() % 2 == 0 ? "SHORTCUT|datadir|C:\\d" : "SHORTCUT|k|v");
    }
    const int lines = static_cast<int>(rng() % 40);
    for (int i = 0; i < lines; ++i) {
        const std::string action = actions[rng() % 9];
        std::string line(rng() % 4, ' ');
        line += "T" + std::to_string(i) + (rng() % 5 == 0 ? "\xE4" : "") + "|b" +
                std::to_string(rng() % 3) + ".bmp|" + action + "|";
        line += action == "LOS" ? (rng() % 2 == 0 ? "C:\\pkg\\" : "C:\\pkg\\p.pkg") : "fn";
        if (rng() % 15 == 0) {
            line += "|extra";
        }
        body.push_back(line);
    }
    return test::menuFile(body);
}

// Every item key names a row, and column 0 numbers the rows without gaps.
::testing::AssertionResult consistent(const Form1& f) {
    for (int i = 1; i <= f.Treeview.count(); ++i) {
        const std::string& key = f.Treeview.key(f.Treeview.byIndex(i));
        if (keys::isItem(key) && (keys::rowOf(key) < 1 || keys::rowOf(key) >= f.Table.rows())) {
            return ::testing::AssertionFailure() << key << " names no row of " << f.Table.rows();
        }
    }
    for (int r = 1; r < f.Table.rows(); ++r) {
        if (f.Table.textView(r, 0) != std::to_string(r)) {
            return ::testing::AssertionFailure()
                   << "row " << r << " numbered '" << f.Table.textView(r, 0) << "'";
        }
    }
    return ::testing::AssertionSuccess();
}

TEST(AppForm1Random, HandlersKeepTableAndTreeTogether) {
    const char* runsSetting = std::getenv("VKL_RANDOM_RUNS");
    const int runs = runsSetting != nullptr ? std::atoi(runsSetting) : 60;
    test::Random random;
    const auto below = [&](int n) { return random.below(n); };
    test::TempDir dir;
    int ended = 0;
    for (int run = 0; run < runs; ++run) {
        RandomHost host(random.rng);
        host.temp = dir.dir();
        for (int k = 0; k < 3; ++k) {
            const std::string menu = dir.file("menu" + std::to_string(k) + ".vkl");
            test::writeBytes(menu, randomMenu(random.rng));
            host.files.push_back(menu);
        }
        test::writeBmp(dir.file("b1.bmp"), 8, 8);
        host.files.push_back(dir.file("b1.bmp"));
        Form1 f(host, "C:\\inst", static_cast<int16_t>(1 + below(2)));
        IndexPort port(f.Treeview);
        f.treePort = &port;
        f.load();
        // The grid takes over an open edit before its current cell moves, as the window's does.
        const auto moveTo = [&](int row, int col) {
            f.commitText();
            f.Table.setRow(row);
            f.Table.setCol(col);
        };
        // A node the user can point at; none while the tree is empty.
        const auto anyKey = [&] {
            const int n = f.Treeview.count();
            return n == 0 ? std::string() : f.Treeview.key(f.Treeview.byIndex(1 + below(n)));
        };
        const auto y = [&](int lines) { return 240.0 * below(lines); };
        const std::function<void()> actions[] = {
            [&] { f.toolbarClick("open"); },
            [&] { f.toolbarClick("save"); },
            [&] { f.toolbarClick("lineadd"); },
            [&] { f.toolbarClick("linedel"); },
            [&] { f.toolbarClick(below(2) == 0 ? "useeng" : "useger"); },
            [&] {
                moveTo(1 + below(f.Table.rows() - 1), 1 + below(4));
                int key = "aZ 5\r\x08"[below(6)];
                f.tableKeyPress(key);
            },
            [&] {
                if (f.Text1.visible) {
                    f.text1Change(f.Text1.text + "x");
                    int key = below(3) == 0 ? 13 : 'q';
                    f.text1KeyPress(key);
                }
            },
            [&] {
                if (f.Combo1.visible) {
                    f.combo1Click(below(4) == 0 ? "junk" : "PKG");
                }
            },
            [&] { f.commitText(); },
            [&] {
                moveTo(1 + below(f.Table.rows() - 1), below(5));
                f.tableMouseDown(1);
                f.tableClick();
            },
            [&] { f.tableDblClick(); },
            [&] {
                if (const std::string key = anyKey(); !key.empty()) {
                    f.treeviewNodeClick(key);
                }
            },
            [&] { f.treeviewMouseDown(below(2) == 0 ? 1 : 2, 0, 100, y(30)); },
            [&] { f.treeviewMouseDown(2, 0, 100, y(f.Treeview.count() + 1)); },  // a pop-up
            [&] {
                f.treeviewMouseDown(1, 0, 100, y(30));
                f.treeviewStartDrag();
                f.treeviewDragOver(100, y(30));
                f.timer1Tick();
                f.treeviewDragDrop(anyKey(), 100, y(30));
            },
            [&] { f.expandClick(); },
            [&] { f.colapseClick(); },
            [&] { f.onlymenusClick(); },
            [&] { f.treeviewAfterLabelEdit(below(2) == 0 ? "" : "Label"); },
            [&] {
                f.tableDragDrop(below(2) == 0 ? "Picture1" : "Picture2", below(f.Table.rows() + 1));
            }};
        std::string trail;  // what the run did, for the failure message
        for (int step = 0; step < 150; ++step) {
            // Opening a file and typing on the grid come twice as often as the others.
            int action = below(22);
            action = action >= 20 ? (action == 20 ? 0 : 5) : action;
            trail += " " + std::to_string(action);
            try {
                actions[action]();
            } catch (const RuntimeError&) {
                ++ended;  // the window would end here
                break;
            } catch (const std::exception& e) {
                FAIL() << "run " << run << " step " << step << ": " << e.what() << "; actions"
                       << trail;
            }
            ASSERT_TRUE(consistent(f)) << "run " << run << " step " << step << "; actions" << trail;
        }
    }
    // Most runs go their whole length: a run-time error on every path would test nothing.
    EXPECT_LT(ended, runs / 2 + 1);
}

}  // namespace
}  // namespace vkl
