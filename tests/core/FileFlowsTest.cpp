#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include "app/Form1.h"
#include "menufile/Format.h"
#include "support/CoreSupport.h"

namespace vkl {
namespace {

namespace fs = std::filesystem;
using test::readBytes;
using test::ScriptedHost;

struct FileFlows : ::testing::Test {
    test::TempDir dir;
    ScriptedHost host;
    Form1 form{host, "C:\\install", 1};
    std::string menus = dir.file("menus") + "/";
    std::string example = menus + "example.vkl";
    std::string lastFolderFile = dir.file("ZOVDEF2.txt");

    void SetUp() override {
        host.temp = dir.dir();
        fs::create_directory(menus);
        fs::copy_file(std::string(VKL_TEST_DATA) + "/example.vkl", example);
    }
    // Opens the file, answering the append question when one is given.
    void open(const std::string& path, std::optional<Answer> append = {}) {
        if (append) {
            host.answers.push_back(*append);
        }
        host.openAnswers.push_back(ScriptedHost::pick(path));
        form.toolbarClick("open");
    }
    // The folder the open dialog started in, which is then cancelled.
    std::string cancelOpen() {
        host.openAnswers.push_back(ChosenFile{});
        form.openFlow();
        return host.openRequests.back().initialDir;
    }
    std::string shape() const { return test::shape(form.Treeview); }
    std::string rowsAndShape() const { return std::to_string(form.Table.rows()) + " " + shape(); }
};

TEST_F(FileFlows, OpenRemembersTheFolderInTheTemporaryFolder) {
    open(example);
    const FileDialog& d = host.openRequests.at(0);
    EXPECT_EQ(d.filter + "/" + std::to_string(d.filterIndex) + "/" + d.initialDir,
              "All Files (*.*)|*.*|VKL Files (*.vkl)|*.vkl/2/");
    EXPECT_EQ(form.decfilename + "|" + readBytes(lastFolderFile) + host.boxes() + shape(),
              example + "|" + menus + "\r\nMenu0{Menu1{Child1 Child2} Child3}");
    EXPECT_EQ(form.Datadir.text, "C:\\data");

    // The next open starts there; cancelled, it changes nothing and asks nothing.
    EXPECT_EQ(cancelOpen(), menus);
    EXPECT_EQ(host.boxes() + rowsAndShape(), "4 Menu0{Menu1{Child1 Child2} Child3}");

    // The delimited read cuts at a comma, unless the text is quoted.
    test::writeBytes(lastFolderFile, "  /with \t ,comma/\r\n");
    EXPECT_EQ(cancelOpen(), "/with");
    test::writeBytes(lastFolderFile, "\"/quoted, too/\"\r\n");
    EXPECT_EQ(cancelOpen(), "/quoted, too/");

    // An open writes the file over whatever longer text it held: its line and nothing after.
    test::writeBytes(lastFolderFile, std::string(3 * menus.size(), 'x') + "\r\nsecond line\r\n");
    open(example, Answer::No);
    EXPECT_EQ(readBytes(lastFolderFile), menus + "\r\n");

    // Without a temporary folder the file is neither read nor written.
    fs::remove(lastFolderFile);
    host.temp.reset();
    open(example, Answer::No);
    EXPECT_EQ(host.openRequests[5].initialDir, "");
    EXPECT_FALSE(fs::exists(lastFolderFile));
}

TEST_F(FileFlows, AppendQuestionDecidesBetweenAppendAndOverwrite) {
    // Text in row 1 only: no question, the file replaces the table, the serial goes on.
    form.Table.setRows(3);
    form.Table.setTextMatrix(1, 1, "mine");
    form.tree.nodeSerial = 5;
    open(example);
    EXPECT_EQ(host.boxes() + rowsAndShape(), "4 Menu0{Menu6{Child1 Child2} Child3}");

    // Yes appends: the last row with text (in any column) gives way to the first line read.
    for (int c = 1; c < 6; ++c) {
        form.Table.setTextMatrix(3, c, "");
    }
    open(example, Answer::Yes);
    EXPECT_EQ(host.boxes(),
              "[Overwrite or append ?] Table has already data inside ! \rDo you want "
              "to append to the end ! {yes/no ? no-first}\n");
    EXPECT_EQ(form.Table.textMatrix(2, 1) + "|" + form.Table.textMatrix(3, 1) + rowsAndShape(),
              "Library|Through hole6 Menu0{Menu7{Child3 Child4} Child5}");

    // No overwrites and numbers the folders from 1 again; German asks in German.
    form.languageCode = 2;
    host.messages.clear();
    open(example, Answer::No);
    EXPECT_EQ(host.boxes(),
              "[Daten einfuegen ?] Tabelle beinhaltet Daten !\rMoechten Sie neue Daten hinten "
              "einfuegen ?  {yes/no ? no-first}\n");
    EXPECT_EQ(rowsAndShape(), "4 Menu0{Menu1{Child1 Child2} Child3}");
}

// The toolbar button or pop-up menu takes the focus: an open editor is taken over first, so
// neither the read nor a removal leaves it over a row that is gone.
TEST_F(FileFlows, OpenEditorsAreTakenOverBeforeRowsGo) {
    open(example, Answer::Yes);
    open(example);  // rows 1 to 6
    auto startEdit = [&](int row, int col, int key) {
        form.Table.setRow(row);
        form.Table.setCol(col);
        form.tableKeyPress(key);
    };
    startEdit(6, 1, 'x');
    startEdit(6, 3, 'd');
    form.Combo1.text = "Dialog";
    open(example, Answer::No);
    EXPECT_FALSE(form.Text1.visible || form.Combo1.visible);
    EXPECT_EQ(form.Table.rows(), 4);

    // The edit reaches its cell before the file is appended after it.
    startEdit(2, 1, 'q');
    open(example, Answer::Yes);
    EXPECT_EQ(form.Table.textMatrix(2, 1), "Q");

    // A removal from the pop-up menu: the drop-down writes its code, then its row goes.
    ASSERT_EQ(shape(), "Menu0{Menu2{Child3 Child4} Child5}");
    startEdit(4, 3, 'd');
    form.Combo1.text = "Function";
    form.treeEvents.currentNodeKey = "Menu2";
    form.menuClick("removechilden");
    EXPECT_FALSE(form.Combo1.visible);
    EXPECT_EQ(form.edit.lastCode, "F");
    EXPECT_EQ(form.Table.rows(), 4);
}

TEST_F(FileFlows, SaveChecksDerivesAFlatTreeAndWrites) {
    form.saveFlow();  // the check refuses: one message, no dialog
    EXPECT_TRUE(host.saveRequests.empty() && host.messages.size() == 1);

    form.Table.setRows(3);
    for (int r : {1, 2}) {
        form.Table.setTextMatrix(r, 1, r == 1 ? "Typed" : "  Second");
        form.Table.setTextMatrix(r, 3, "F");
        form.Table.setTextMatrix(r, 4, "p" + std::to_string(r));
    }
    host.saveAnswers.push_back(ChosenFile{});
    form.saveFlow();
    const FileDialog& d = host.saveRequests.at(0);
    EXPECT_TRUE(d.filter == format::kMenuFileFilter && d.filterIndex == 2 && d.overwritePrompt);
    EXPECT_EQ(form.decfilename, "");
    EXPECT_EQ(shape(), "Menu0{Child1 Child2}");  // derived before the dialog

    host.saveAnswers.push_back(ScriptedHost::pick(dir.file("typed.vkl")));
    form.saveFlow();
    EXPECT_EQ(form.decfilename, dir.file("typed.vkl"));
    EXPECT_EQ(test::linesFrom(dir.file("typed.vkl")), "Typed||F|p1\n  Second||F|p2\n");
}

// Looks at the text box while the folder browser is up.
struct BrowsingHost : ScriptedHost {
    const TextBox* box = nullptr;
    std::vector<bool> enabledWhileBrowsing;
    std::string browseForFolder(const std::string& title) override {
        enabledWhileBrowsing.push_back(box->enabled);
        return ScriptedHost::browseForFolder(title);
    }
};

TEST(FileFolderChoosers, BrowserFillsTheBoxOrKeepsItsText) {
    BrowsingHost host;
    Form1 form(host, "", 1);
    for (TextBox* box : {&form.Datadir, &form.Imagedir}) {
        host.box = box;
        box->text = "old";
        box->enabled = false;
        host.folderAnswers = {std::string("C:\\chosen\0rest", 14), ""};
        for (int i = 0; i < 2; ++i) {
            box == &form.Datadir ? form.askDatadirClick() : form.askImagedirClick();
            EXPECT_EQ(box->text, "C:\\chosen");  // a cancelled browser keeps the text
            EXPECT_FALSE(box->enabled);
        }
    }
    EXPECT_EQ(host.enabledWhileBrowsing, std::vector<bool>(4, true));
    EXPECT_EQ(host.browseTitles, std::vector<std::string>(4, "Please select a folder"));
}

}  // namespace
}  // namespace vkl
