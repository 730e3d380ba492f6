#include "gui/MainWindow.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QFile>
#include <QFocusEvent>
#include <QFontMetrics>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSplitter>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <new>

#include "app/Texts.h"
#include "gui/Convert.h"
#include "gui/GridModel.h"
#include "gui/Icons.h"
#include "gui/PreviewWindow.h"
#include "gui/TreeModel.h"
#include "gui/Views.h"
#include "platform/RuntimeError.h"
#include "platform/Text.h"
#include "platform/VectorState.h"

namespace vkl::gui {

namespace {

// Focus that moves because another window or a pop-up took it is no focus change of the form.
bool formFocusReason(Qt::FocusReason reason) {
    return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason;
}

bool sameToolbar(const std::vector<ToolbarButton>& a, const std::vector<ToolbarButton>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const ToolbarButton& x, const ToolbarButton& y) {
                          return x.key == y.key && x.image == y.image && x.style == y.style &&
                                 x.tooltip == y.tooltip && x.description == y.description &&
                                 x.widthTwips == y.widthTwips;
                      });
}

void setLabel(QLabel* label, const std::string& text) {
    const QString shown = fromCp1252(text);
    if (label->text() != shown) {
        label->setText(shown);
    }
}

void setCaption(QAbstractButton* button, const std::string& text) {
    const QString shown = fromCp1252(text);
    if (button->text() != shown) {
        button->setText(shown);
    }
}

void showField(QLineEdit* edit, const TextBox& field) {
    if (toCp1252(edit->text()) != field.text) {
        edit->setText(fromCp1252(field.text));
        edit->setCursorPosition(0);
    }
    edit->setEnabled(field.enabled);
    if (edit->isHidden() == field.visible) {
        edit->setVisible(field.visible);
    }
}

void showItems(QComboBox* combo, const std::vector<std::string>& items) {
    QStringList wanted;
    for (const std::string& item : items) {
        wanted << fromCp1252(item);
    }
    QStringList present;
    for (int i = 0; i < combo->count(); ++i) {
        present << combo->itemText(i);
    }
    if (present != wanted) {
        const QString edit = combo->isEditable() ? combo->currentText() : QString();
        combo->clear();
        combo->addItems(wanted);
        if (combo->isEditable()) {
            combo->setEditText(edit);
        }
    }
}

}  // namespace

MainWindow::MainWindow(Form1& form, QWidget* parent) : QMainWindow(parent), form_(form) {
    setObjectName(QStringLiteral("Form1"));
    setWindowTitle(QStringLiteral("VKL Editor"));
    // The toolbar is part of the window, not something to switch off from a context menu.
    setContextMenuPolicy(Qt::NoContextMenu);

    gridModel_ = new GridModel(form_.Table, this);
    treeModel_ = new TreeModel(form_.Treeview, this);
    buildWidgets();
    buildMenus();
    connectGrid();
    connectTree();
    form_.treePort = tree_;
    form_.showBeforePopup = [this] { sync(); };
    sizeColumns();
}

MainWindow::~MainWindow() {
    // A label editor still open commits as it closes while the widgets go; the form hears no
    // more of the window from here on.
    ended_ = true;
    disconnect(treeModel_, nullptr, this, nullptr);
    disconnect(gridModel_, nullptr, this, nullptr);
    if (form_.treePort == tree_) {
        form_.treePort = nullptr;
    }
    form_.showBeforePopup = nullptr;
}

// ---- Building --------------------------------------------------------------------------------

void MainWindow::buildWidgets() {
    toolbar_ = new QToolBar(this);
    toolbar_->setObjectName(QStringLiteral("Toolbar1"));
    toolbar_->setMovable(false);
    toolbar_->setFloatable(false);
    toolbar_->setToolButtonStyle(Qt::ToolButtonIconOnly);
    addToolBar(Qt::TopToolBarArea, toolbar_);
    toolbar_->installEventFilter(this);

    auto* central = new QWidget(this);
    setCentralWidget(central);
    auto* outer = new QVBoxLayout(central);

    const auto makeLabel = [central](const char* name, QWidget* field) {
        auto* l = new QLabel(central);
        l->setObjectName(QString::fromLatin1(name));
        l->setBuddy(field);
        return l;
    };
    const auto makeEdit = [central](const char* name) {
        auto* e = new QLineEdit(central);
        e->setObjectName(QString::fromLatin1(name));
        return e;
    };
    const auto makeButton = [central](const char* name) {
        auto* b = new QPushButton(central);
        b->setObjectName(QString::fromLatin1(name));
        b->setAutoDefault(false);
        return b;
    };
    const auto makeSizeField = [this, central](const char* name) {
        auto* c = new QComboBox(central);
        c->setObjectName(QString::fromLatin1(name));
        c->setEditable(true);
        // The text stays as typed: no completion from the list.
        c->setCompleter(nullptr);
        c->setInsertPolicy(QComboBox::NoInsert);
        c->setMinimumContentsLength(5);
        c->installEventFilter(this);
        return c;
    };

    // Header fields of the menu file, above the grid.
    // The fields are made in tab order, each label after the field it names.
    text2_ = makeEdit("Text2");
    text3_ = makeEdit("Text3");
    combo2_ = makeSizeField("Combo2");
    combo3_ = makeSizeField("Combo3");
    label3_ = makeLabel("Label3", text2_);
    label4_ = makeLabel("Label4", text3_);
    label1_ = makeLabel("Label1", combo2_);
    label2_ = makeLabel("Label2", combo3_);
    askDatadir_ = makeButton("ask_datadir");
    datadir_ = makeEdit("Datadir");
    askImagedir_ = makeButton("ask_imagedir");
    imagedir_ = makeEdit("Imagedir");

    auto* header = new QGridLayout;
    header->addWidget(label3_, 0, 0);
    header->addWidget(text2_, 0, 1);
    header->addWidget(label1_, 0, 2);
    header->addWidget(combo2_, 0, 3);
    header->addWidget(label4_, 1, 0);
    header->addWidget(text3_, 1, 1);
    header->addWidget(label2_, 1, 2);
    header->addWidget(combo3_, 1, 3);
    header->addWidget(askDatadir_, 2, 0);
    header->addWidget(datadir_, 2, 1, 1, 3);
    header->addWidget(askImagedir_, 3, 0);
    header->addWidget(imagedir_, 3, 1, 1, 3);
    header->setColumnStretch(1, 1);
    outer->addLayout(header);

    // The grid with the tree beside it.
    auto* body = new QSplitter(Qt::Horizontal, central);
    body->setChildrenCollapsible(false);

    table_ = new GridView(body);
    table_->setObjectName(QStringLiteral("Table"));
    table_->setModel(gridModel_);
    // The header row's texts change with the language only, never the lines or their height:
    // the header repaints itself, where the view's own handling (a private slot, which is why
    // it is named by text) would lay out the whole grid again and repaint every line. Should a
    // later Qt name it otherwise, this does nothing and the grid is merely repainted.
    disconnect(gridModel_, SIGNAL(headerDataChanged(Qt::Orientation, int, int)), table_,
               SLOT(_q_headerDataChanged()));
    table_->setVerticalScrollBar(new StillScrollBar(Qt::Vertical, table_));
    table_->setHorizontalScrollBar(new StillScrollBar(Qt::Horizontal, table_));
    table_->setItemDelegate(new GridCellDelegate(table_));
    table_->setShowGrid(false);  // the cells draw the lines
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setMinimumSectionSize(1);
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 8);
    table_->horizontalHeader()->setSectionsClickable(false);
    table_->horizontalHeader()->setHighlightSections(false);
    table_->horizontalHeader()->setStretchLastSection(false);
    table_->horizontalHeader()->setMinimumSectionSize(1);
    // The current cell is framed, not filled, so that the colours of marked and highlighted
    // lines show on it too.
    table_->setSelectionMode(QAbstractItemView::NoSelection);
    table_->setSelectionBehavior(QAbstractItemView::SelectItems);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setTabKeyNavigation(false);
    table_->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    table_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    table_->setWordWrap(false);
    table_->setCornerButtonEnabled(false);
    table_->setAcceptDrops(true);
    table_->setDropIndicatorShown(false);
    table_->setDragDropMode(QAbstractItemView::DropOnly);
    body->addWidget(table_);

    // The editors of a cell, laid over it when an edit starts.
    text1_ = new QLineEdit(table_->viewport());
    text1_->setObjectName(QStringLiteral("Text1"));
    // A thin border in the highlight colour tells the open editor from the cell under it.
    text1_->setFrame(false);
    text1_->setAutoFillBackground(true);
    text1_->setStyleSheet(QStringLiteral("QLineEdit { border: 1px solid palette(highlight); }"));
    text1_->hide();
    text1_->installEventFilter(this);
    combo1_ = new QComboBox(table_->viewport());
    combo1_->setObjectName(QStringLiteral("Combo1"));
    combo1_->hide();
    combo1_->installEventFilter(this);

    auto* treePane = new QWidget(body);
    auto* treeColumn = new QVBoxLayout(treePane);
    treeColumn->setContentsMargins(0, 0, 0, 0);
    tree_ = new NodeView(treePane);
    tree_->setObjectName(QStringLiteral("Treeview"));
    // Connected before the view's own handlers: a command that removes the current node would
    // make the view choose another one and lay out every line at once to draw it. The view
    // drops it quietly instead; the form's selection is shown again once the command is done.
    connect(treeModel_, &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex& parent, int first, int last) {
                if (handlerDepth_ == 0) {
                    return;
                }
                for (QModelIndex at = tree_->currentIndex(); at.isValid(); at = at.parent()) {
                    if (at.row() >= first && at.row() <= last && at.parent() == parent) {
                        const QSignalBlocker quiet(tree_->selectionModel());
                        tree_->selectionModel()->clear();
                        break;
                    }
                }
            });
    tree_->setModel(treeModel_);
    tree_->setVerticalScrollBar(new StillScrollBar(Qt::Vertical, tree_));
    tree_->setHorizontalScrollBar(new StillScrollBar(Qt::Horizontal, tree_));
    tree_->setItemDelegate(new NodeDelegate(tree_));
    tree_->setHeaderHidden(true);
    tree_->setUniformRowHeights(true);
    tree_->setSelectionMode(QAbstractItemView::SingleSelection);
    tree_->setEditTriggers(QAbstractItemView::SelectedClicked | QAbstractItemView::EditKeyPressed);
    tree_->setDragEnabled(true);
    tree_->setAcceptDrops(true);
    tree_->setDragDropMode(QAbstractItemView::DragDrop);
    tree_->setDefaultDropAction(Qt::MoveAction);
    tree_->setDropIndicatorShown(false);
    // Scrolling near the edges while dragging is the form's timer's work.
    tree_->setAutoScroll(false);
    treeColumn->addWidget(tree_, 1);

    expand_ = makeButton("Expand");
    colapse_ = makeButton("Colapse");
    onlymenus_ = makeButton("onlymenus");
    auto* views = new QHBoxLayout;
    views->addWidget(expand_);
    views->addWidget(colapse_);
    views->addWidget(onlymenus_);
    treeColumn->addLayout(views);
    body->addWidget(treePane);
    body->setStretchFactor(0, 3);
    body->setStretchFactor(1, 1);
    outer->addWidget(body, 1);

    decfilename_ = makeLabel("decfilename", nullptr);
    decfilename_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // A long path is cut at the window's edge rather than widening the window.
    decfilename_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    quit_ = makeButton("Quit");
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(decfilename_, 1);
    bottom->addWidget(quit_);
    outer->addLayout(bottom);

    // Controls without a caption are named by their role.
    toolbar_->setAccessibleName(tr("Toolbar"));
    table_->setAccessibleName(tr("Menu table"));
    tree_->setAccessibleName(tr("Menu tree"));
    text1_->setAccessibleName(tr("Cell editor"));
    combo1_->setAccessibleName(tr("Action"));
    decfilename_->setAccessibleName(tr("File name"));

    timer1_ = new QTimer(this);
    timer1_->setObjectName(QStringLiteral("Timer1"));
    connect(timer1_, &QTimer::timeout, this, [this] { run([this] { form_.timer1Tick(); }); });

    connect(askDatadir_, &QPushButton::clicked, this,
            [this] { run([this] { form_.askDatadirClick(); }); });
    connect(askImagedir_, &QPushButton::clicked, this,
            [this] { run([this] { form_.askImagedirClick(); }); });
    connect(expand_, &QPushButton::clicked, this, [this] { run([this] { form_.expandClick(); }); });
    connect(colapse_, &QPushButton::clicked, this,
            [this] { run([this] { form_.colapseClick(); }); });
    connect(onlymenus_, &QPushButton::clicked, this,
            [this] { run([this] { form_.onlymenusClick(); }); });
    connect(quit_, &QPushButton::clicked, this, [this] { run([this] { form_.quitClick(); }); });

    // Typing into a header field only changes the form's copy of it.
    const auto follow = [this](QLineEdit* edit, TextBox& field) {
        connect(edit, &QLineEdit::textEdited, this, [this, &field](const QString& t) {
            if (!syncing_) {
                field.text = toCp1252(t);
            }
        });
    };
    follow(text2_, form_.Text2);
    follow(text3_, form_.Text3);
    follow(datadir_, form_.Datadir);
    follow(imagedir_, form_.Imagedir);
    connect(combo2_, &QComboBox::editTextChanged, this, [this](const QString& t) {
        if (!syncing_) {
            form_.Combo2.text = toCp1252(t);
        }
    });
    connect(combo3_, &QComboBox::editTextChanged, this, [this](const QString& t) {
        if (!syncing_) {
            form_.Combo3.text = toCp1252(t);
        }
    });
}

void MainWindow::buildMenus() {
    const auto makeMenu = [this](const char* name) {
        auto* m = new QMenu(this);
        m->setObjectName(QString::fromLatin1(name));
        return m;
    };
    const auto entry = [](QMenu* menu, const char* name) {
        QAction* a = menu->addAction(QString::fromLatin1(name));
        a->setObjectName(QString::fromLatin1(name));
    };
    menu1_ = makeMenu("Menu1");
    entry(menu1_, "addsub");
    menu2_ = makeMenu("Menu2");
    entry(menu2_, "addabove1");
    menu2_->addSeparator();
    entry(menu2_, "remove1");
    menu3_ = makeMenu("menu3");
    entry(menu3_, "addabove2");
    entry(menu3_, "addbelow2");
    menu3_->addSeparator();
    entry(menu3_, "remove2");
    entry(menu3_, "removechilden");
    menu3_->addSeparator();
    entry(menu3_, "addimage");
}

void MainWindow::connectGrid() {
    table_->beforePress = [this](QMouseEvent*) {
        // The edit is taken over before the click moves the current cell.
        if (form_.Text1.visible) {
            run([this] { form_.commitText(); });
        }
    };
    table_->afterPress = [this](QMouseEvent* e) {
        const int button = buttonCode(e->button());
        run([this, button] { form_.tableMouseDown(button); });
    };
    table_->clicked = [this](QMouseEvent*) { run([this] { form_.tableClick(); }); };
    table_->doubleClicked = [this](QMouseEvent*) { run([this] { form_.tableDblClick(); }); };
    table_->keyTyped = [this](QKeyEvent* e) {
        int code = keyAscii(*e);
        if (code < 0) {
            return false;  // navigation keys move the current cell
        }
        run([this, &code] { form_.tableKeyPress(code); });
        return true;
    };
    table_->focusGained = [this](QFocusEvent* e) {
        if (!syncing_ && handlerDepth_ == 0 && form_.Text1.visible &&
            formFocusReason(e->reason())) {
            run([this] { form_.commitText(); });
        }
    };
    table_->controlDropped = [this](const QString& control, int viewRow) {
        const std::string name = toCp1252(control);
        run([this, &name, viewRow] { form_.tableDragDrop(name, viewRow + 1); });
    };

    connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                // While a handler runs the view only echoes the form; sync() sets it after.
                if (syncing_ || handlerDepth_ > 0 || !current.isValid()) {
                    return;
                }
                const int row = current.row() + 1;
                const int col = current.column();
                if (form_.Text1.visible) {
                    run([this, row, col] { form_.tableCurrentChanged(row, col); });
                } else {
                    form_.tableCurrentChanged(row, col);
                }
            });
    connect(table_->verticalScrollBar(), &QScrollBar::valueChanged, this, [this](int value) {
        if (syncing_ || handlerDepth_ > 0) {
            return;
        }
        form_.tableScrolled(value + 1);
        shownTopRow_ = form_.Table.topRow();
    });
    // Scrolling moves the editors with the viewport; a column or row changing size does not.
    connect(table_->horizontalHeader(), &QHeaderView::sectionResized, this,
            [this] { placeOverlays(); });
    connect(table_->verticalHeader(), &QHeaderView::sectionResized, this,
            [this] { placeOverlays(); });
    connect(gridModel_, &QAbstractItemModel::modelReset, this, [this] {
        // A reset forgets the scroll position; the next sync() puts the form's back.
        shownTopRow_ = -1;
        gridLayoutPending_ = true;
    });

    connect(text1_, &QLineEdit::textEdited, this, [this](const QString& t) {
        if (!syncing_) {
            text1Edited(t);
        }
    });
    const auto readCaret = [this] {
        if (syncing_) {
            return;
        }
        if (text1_->hasSelectedText()) {
            form_.text1Caret(text1_->selectionStart(),
                             static_cast<int>(text1_->selectedText().size()));
        } else {
            form_.text1Caret(text1_->cursorPosition(), 0);
        }
    };
    connect(text1_, &QLineEdit::cursorPositionChanged, this, readCaret);
    connect(text1_, &QLineEdit::selectionChanged, this, readCaret);

    connect(combo1_, &QComboBox::activated, this, [this](int index) {
        if (syncing_) {
            return;
        }
        const std::string text = toCp1252(combo1_->itemText(index));
        run([this, &text] { form_.combo1Click(text); });
    });
}

void MainWindow::connectTree() {
    tree_->keyOf = [this](const QModelIndex& index) {
        const NodeRef n = treeModel_->node(index);
        return n.isNull() ? std::string() : form_.Treeview.key(n);
    };
    tree_->pressed = [this](QMouseEvent* e) {
        const int button = buttonCode(e->button());
        const int shift = shiftCode(e->modifiers());
        const double x = toTwipsX(tree_, e->position().x());
        const double y = toTwipsY(tree_, e->position().y());
        run([=, this] { form_.treeviewMouseDown(button, shift, x, y); });
    };
    tree_->nodeClicked = [this](const QModelIndex& index) {
        const NodeRef n = treeModel_->node(index);
        if (n.isNull()) {
            return;
        }
        const std::string key = form_.Treeview.key(n);
        run([this, &key] { form_.treeviewNodeClick(key); });
    };
    tree_->dragStarting = [this] {
        if (!run([this] { form_.treeviewStartDrag(); })) {
            return QString();
        }
        const NodeRef n = form_.treeEvents.treeSelected;
        return form_.Treeview.alive(n) ? fromCp1252(form_.Treeview.key(n)) : QString();
    };
    tree_->draggedOver = [this](QPointF at) {
        int effect = 0;
        const double x = toTwipsX(tree_, at.x());
        const double y = toTwipsY(tree_, at.y());
        run([&, this] { effect = form_.treeviewDragOver(x, y); });
        return effect;
    };
    tree_->dropped = [this](const QString& text, QPointF at) {
        const std::string key = toCp1252(text);
        const double x = toTwipsX(tree_, at.x());
        const double y = toTwipsY(tree_, at.y());
        run([&, this] { form_.treeviewDragDrop(key, x, y); });
    };

    connect(tree_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                if (syncing_ || handlerDepth_ > 0) {
                    return;
                }
                form_.treeviewSelect(treeModel_->node(current));
            });
    const auto userExpands = [this](const QModelIndex& index, bool expanded) {
        if (syncing_ || handlerDepth_ > 0) {
            return;
        }
        form_.treeviewExpand(treeModel_->node(index), expanded);
    };
    connect(tree_, &QTreeView::expanded, this,
            [userExpands](const QModelIndex& index) { userExpands(index, true); });
    connect(tree_, &QTreeView::collapsed, this,
            [userExpands](const QModelIndex& index) { userExpands(index, false); });

    connect(treeModel_, &TreeModel::expandedChanged, this,
            [this](const QModelIndex& index, bool expanded) {
                const bool was = syncing_;
                syncing_ = true;
                tree_->setExpanded(index, expanded);
                syncing_ = was;
            });
    connect(treeModel_, &TreeModel::ensureVisible, this,
            [this](const QModelIndex& index) { tree_->scrollTo(index); });
    connect(treeModel_, &TreeModel::expansionNeedsRefresh, this,
            [this](const QModelIndex& below) { refreshExpansion(below); });
    connect(treeModel_, &TreeModel::labelEdited, this,
            [this](const QModelIndex& index, const QString& text) {
                const NodeRef n = treeModel_->node(index);
                if (n.isNull()) {
                    return;
                }
                const std::string label = toCp1252(text);
                run([this, n, &label] { form_.treeviewLabelEdited(n, label); });
            });
}

void MainWindow::refreshExpansion(const QModelIndex& below) {
    const bool was = syncing_;
    syncing_ = true;
    TreeNodes& nodes = form_.Treeview;
    if (!below.isValid()) {
        // After a reset the view has forgotten every expanded node: one pass over the
        // collection tells it the expanded ones.
        for (const NodeRef n : nodes.expandedParents()) {
            tree_->setExpanded(treeModel_->indexOf(n), true);
        }
        syncing_ = was;
        return;
    }
    // A move keeps the view's flags; those of the moved subtree are compared node by node.
    std::vector<NodeRef> pending{treeModel_->node(below)};
    while (!pending.empty()) {
        const NodeRef n = pending.back();
        pending.pop_back();
        if (n.isNull()) {
            continue;
        }
        const int children = nodes.childCount(n);
        const bool wanted = nodes.expanded(n);
        const QModelIndex at = treeModel_->indexOf(n);
        if (tree_->isExpanded(at) != wanted) {
            tree_->setExpanded(at, wanted);
        }
        for (int i = 0; i < children; ++i) {
            pending.push_back(nodes.childAt(n, i));
        }
    }
    syncing_ = was;
}

void MainWindow::rebuildToolbar() {
    const QList<QAction*> old = toolbar_->actions();
    toolbar_->clear();
    qDeleteAll(old);

    const int icon = std::max(16, toPixelsY(this, form_.toolbarButtonSize) - 8);
    toolbar_->setIconSize(QSize(icon, icon));
    for (const ToolbarButton& b : form_.toolbar) {
        const QString key = fromCp1252(b.key);
        const QString tip = fromCp1252(b.tooltip);
        QAction* action = nullptr;
        switch (b.style) {
            case ToolbarButton::Style::Separator:
                action = toolbar_->addSeparator();
                break;
            case ToolbarButton::Style::Placeholder: {
                // Room on the toolbar, empty but for its tooltip.
                auto* room = new QWidget;
                room->setObjectName(key);
                designedRoom_ = toPixelsX(this, b.widthTwips);
                room->setFixedWidth(designedRoom_);
                room->setToolTip(tip);
                room->setAccessibleName(tip);
                action = toolbar_->addWidget(room);
                break;
            }
            case ToolbarButton::Style::Normal: {
                action = new QAction(icons::toolbar(fromCp1252(b.image)), tip, toolbar_);
                toolbar_->addAction(action);
                const std::string handlerKey = b.key;
                connect(action, &QAction::triggered, this,
                        [this, handlerKey] { run([&] { form_.toolbarClick(handlerKey); }); });
                if (QWidget* button = toolbar_->widgetForAction(action)) {
                    button->setObjectName(key);
                    button->setAccessibleName(tip);
                }
                // The platform's own keys for opening and saving reach the same commands.
                if (b.key == "open") {
                    action->setShortcut(QKeySequence::Open);
                } else if (b.key == "save") {
                    action->setShortcut(QKeySequence::Save);
                }
                break;
            }
        }
        action->setObjectName(key);
        action->setData(key);
        action->setToolTip(tip);
        action->setStatusTip(fromCp1252(b.description));
    }
    shownToolbar_ = form_.toolbar;
    // What the toolbar needs besides the placeholder, measured while it has its full room.
    toolbar_->layout()->invalidate();
    toolbarOthers_ = toolbar_->sizeHint().width() - designedRoom_;
    fitToolbar();
}

void MainWindow::sizeColumns() {
    // Widths follow the grid's font: runs of the letter "n".
    const QFontMetrics metrics(table_->font());
    int total = 0;
    for (int c = 0; c < Grid::kCols; ++c) {
        const int letters = Form1::kColumnLetters[c];
        if (letters == 0) {
            table_->setColumnHidden(c, true);
            continue;
        }
        const int width = metrics.horizontalAdvance(QString(letters, QLatin1Char('n')));
        table_->setColumnHidden(c, false);
        table_->setColumnWidth(c, width);
        total += width;
    }
    // The grid keeps these widths and scrolls sideways when it is narrower than its columns:
    // a few lines and the first two columns are the least it shows.
    table_->setMinimumWidth(table_->columnWidth(0) + table_->columnWidth(1) +
                            table_->verticalScrollBar()->sizeHint().width() +
                            2 * table_->frameWidth());
    table_->setMinimumHeight(table_->horizontalHeader()->sizeHint().height() +
                             4 * table_->verticalHeader()->defaultSectionSize() +
                             table_->horizontalScrollBar()->sizeHint().height() +
                             2 * table_->frameWidth());
    preferredTableWidth_ = total + toPixelsX(this, Form1::kTableMargin) +
                           table_->verticalScrollBar()->sizeHint().width() +
                           2 * table_->frameWidth();
}

void MainWindow::fitCaptions() {
    // Each caption keeps the room of the longer of its two languages, so that switching the
    // language moves none of the fields around it.
    const texts::WindowTexts& en = texts::window(false);
    const texts::WindowTexts& de = texts::window(true);
    const std::pair<QWidget*, std::pair<std::string_view, std::string_view>> captions[] = {
        {label1_, {en.label1, de.label1}},
        {label2_, {en.label2, de.label2}},
        {label3_, {en.label3, de.label3}},
        {label4_, {en.label4, de.label4}},
        {askDatadir_, {en.askDatadir, de.askDatadir}},
        {askImagedir_, {en.askImagedir, de.askImagedir}},
        {expand_, {en.expand, de.expand}},
        {colapse_, {en.colapse, de.colapse}},
        {onlymenus_, {en.onlymenus, de.onlymenus}},
        {quit_, {en.quit, de.quit}},
    };
    for (const auto& [widget, texts] : captions) {
        int width = 0;
        for (const std::string_view text : {texts.first, texts.second}) {
            const QString shown = fromCp1252(std::string(text));
            if (auto* label = qobject_cast<QLabel*>(widget)) {
                width = std::max(width, label->fontMetrics().horizontalAdvance(shown) +
                                            2 * label->margin() + 2 * label->frameWidth());
            } else if (auto* button = qobject_cast<QPushButton*>(widget)) {
                QStyleOptionButton option;
                option.initFrom(button);
                option.text = shown;
                const QSize text(button->fontMetrics().horizontalAdvance(shown),
                                 button->fontMetrics().height());
                width = std::max(
                    width, button->style()
                               ->sizeFromContents(QStyle::CT_PushButton, &option, text, button)
                               .width());
            }
        }
        widget->setMinimumWidth(width);
    }
}

void MainWindow::fitToolbar() {
    // The placeholder gives up its room first when the window is narrower than the toolbar,
    // so that the buttons after it stay on the toolbar.
    auto* room = toolbar_->findChild<QWidget*>(QStringLiteral("vklname"));
    if (!room || designedRoom_ <= 0) {
        return;
    }
    const int slack = toolbar_->layout()->spacing();
    const int width = std::clamp(toolbar_->width() - toolbarOthers_ - slack, 0, designedRoom_);
    if (room->minimumWidth() != width) {
        room->setFixedWidth(width);
        // Laid out at once: the toolbar keeps its size, so nothing else would lay it out, and
        // the buttons it moved into its overflow menu come back.
        toolbar_->layout()->invalidate();
        toolbar_->layout()->activate();
    }
}

// ---- Handlers --------------------------------------------------------------------------------

void MainWindow::load() {
    run([this] { form_.load(); });
    fitCaptions();
    // A first size with room for the grid's columns and a tree beside them, within the
    // screen's free area less the frame the window manager adds.
    const QRect screen = this->screen()->availableGeometry();
    const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this);
    const int frame = 2 * style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth, nullptr, this);
    const QSize room(screen.width() - frame, screen.height() - frame - titleBar);
    const QSize wanted(preferredTableWidth_ + toPixelsX(this, kPreferredTreeTwips),
                       std::max(sizeHint().height(), screen.height() * 3 / 4));
    const QSize size = wanted.boundedTo(room).expandedTo(minimumSizeHint());
    resize(size);
    move(screen.left() + std::max(0, (screen.width() - size.width() - frame) / 2),
         screen.top() + std::max(0, (screen.height() - size.height() - frame - titleBar) / 2));
}

bool MainWindow::run(const std::function<void()>& handler) {
    if (ended_) {
        return false;
    }
    struct Depth {
        int& n;
        explicit Depth(int& c) : n(c) { ++n; }
        ~Depth() { --n; }
    };
    // Like the grid the form knows, the view scrolls by TopRow only while a handler runs and
    // its state is shown: walks that leave the last line current (the colour passes) or a
    // removal of the current line must not carry it elsewhere.
    struct NoAutoScroll {
        QAbstractItemView* view;
        bool was;
        explicit NoAutoScroll(QAbstractItemView* v) : view(v), was(v->hasAutoScroll()) {
            view->setAutoScroll(false);
        }
        ~NoAutoScroll() { view->setAutoScroll(was); }
    };
    const NoAutoScroll still(table_);
    clearUpperVectorHalves();  // whatever Qt ran before, the core starts at full speed
    try {
        Depth depth(handlerDepth_);
        handler();
    } catch (const RuntimeError& e) {
        fail(e.number(), e.description());
        return false;
    } catch (const std::bad_alloc&) {
        fail(7, "Out of memory");
        return false;
    } catch (const std::exception& e) {
        qCritical("vkleditor: unexpected error in a handler: %s", e.what());
        fail(51, "Internal error");
        return false;
    }
    if (!ended_) {
        sync();
    }
    return true;
}

void MainWindow::fail(int number, const std::string& description) {
    ended_ = true;
    timer1_->stop();
    MessageBox box;
    box.prompt = RuntimeError(number, description).message();
    form_.host.msgBox(box);
    form_.host.endProgram();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    // Closing by the frame ends the program without a question; nothing is saved.
    event->accept();
    if (!ended_) {
        ended_ = true;
        timer1_->stop();
        form_.formUnload();
    }
}

void MainWindow::text1Edited(const QString& shown) {
    const std::string text = toCp1252(shown);
    form_.text1Caret(text1_->cursorPosition(), 0);
    run([this, &text] { form_.text1Change(text); });
}

bool MainWindow::filterKey(QWidget* field, QKeyEvent* event,
                           const std::function<void(int&)>& handler) {
    int code = keyAscii(*event);
    if (code < 0) {
        return false;
    }
    const int typed = code;
    // A key typed into a field goes no further, even when the field ignores it (a text box
    // passes Enter on to its parent, which for Text1 is the grid).
    event->accept();
    if (!run([&] { handler(code); })) {
        return true;
    }
    if (code == typed) {
        static_cast<QObject*>(field)->event(event);
        event->accept();
        return true;
    }
    if (code == 0) {
        return true;  // the handler swallowed the key
    }
    // The handler asked for another key than the one typed.
    auto* edit = qobject_cast<QLineEdit*>(field);
    if (auto* combo = qobject_cast<QComboBox*>(field)) {
        edit = combo->lineEdit();
    }
    if (edit && edit->isVisible()) {
        if (code == 8) {
            edit->backspace();
        } else if (code >= 32 && code <= 255) {
            edit->insert(fromCp1252(std::string(1, static_cast<char>(code))));
        }
        if (edit == text1_ && toCp1252(text1_->text()) != form_.Text1.text) {
            text1Edited(text1_->text());
        }
    }
    return true;
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == toolbar_) {
        if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest) {
            fitToolbar();
        }
    } else if (watched == text1_) {
        switch (event->type()) {
            case QEvent::KeyPress:
                if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
                    run([this] { form_.text1Cancel(); });
                    return true;
                }
                return filterKey(text1_, static_cast<QKeyEvent*>(event),
                                 [this](int& k) { form_.text1KeyPress(k); });
            case QEvent::MouseButtonRelease:
                if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton && !syncing_) {
                    // The box places the caret first; the click then selects all.
                    static_cast<QObject*>(text1_)->event(event);
                    run([this] { form_.text1Click(); });
                    return true;
                }
                break;
            case QEvent::FocusIn:
            case QEvent::FocusOut:
                if (!syncing_ && formFocusReason(static_cast<QFocusEvent*>(event)->reason())) {
                    form_.Text1.hasFocus = event->type() == QEvent::FocusIn;
                    shownText1Focus_ = form_.Text1.hasFocus;
                }
                break;
            default:
                break;
        }
    } else if (watched == combo1_) {
        // Opening its own list moves the focus into the list: that is no leaving.
        if (event->type() == QEvent::FocusOut && !syncing_ && handlerDepth_ == 0 &&
            form_.Combo1.visible && formFocusReason(static_cast<QFocusEvent*>(event)->reason()) &&
            !combo1_->view()->window()->isVisible()) {
            const std::string text = toCp1252(combo1_->currentText());
            run([this, &text] { form_.combo1Click(text); });
        }
        if (event->type() == QEvent::KeyPress && !syncing_) {
            return combo1Key(static_cast<QKeyEvent*>(event));
        }
    } else if (watched == combo2_ || watched == combo3_) {
        ComboBox& field = watched == combo2_ ? form_.Combo2 : form_.Combo3;
        auto* combo = static_cast<QComboBox*>(watched);
        if (event->type() == QEvent::KeyPress) {
            return filterKey(combo, static_cast<QKeyEvent*>(event),
                             [this](int& k) { form_.sizeFieldKeyPress(k); });
        }
        if (event->type() == QEvent::FocusOut && !syncing_ && handlerDepth_ == 0 &&
            formFocusReason(static_cast<QFocusEvent*>(event)->reason())) {
            run([this, &field] { form_.sizeFieldLeave(field); });
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

bool MainWindow::combo1Key(QKeyEvent* event) {
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    switch (event->key()) {
        case Qt::Key_Escape:
            run([this] { form_.combo1Cancel(); });
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter: {
            const std::string text = toCp1252(combo1_->currentText());
            run([this, &text] { form_.combo1Click(text); });
            return true;
        }
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_Home:
        case Qt::Key_End:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown: {
            if (!plain) {
                return false;  // Alt+Down opens the list
            }
            // The arrows move through the list without choosing: only Enter or a click
            // writes a code.
            const int last = combo1_->count() - 1;
            const int at = combo1_->currentIndex();
            int to = at;
            switch (event->key()) {
                case Qt::Key_Up:
                    to = at < 0 ? 0 : at - 1;
                    break;
                case Qt::Key_Down:
                    to = at + 1;
                    break;
                case Qt::Key_Home:
                case Qt::Key_PageUp:
                    to = 0;
                    break;
                default:
                    to = last;
                    break;
            }
            to = std::clamp(to, 0, std::max(last, 0));
            if (last >= 0 && to != at) {
                combo1_->setCurrentIndex(to);
                form_.combo1Browse(toCp1252(combo1_->itemText(to)));
            }
            return true;
        }
        default:
            return false;
    }
}

// ---- Showing the form's state ----------------------------------------------------------------

void MainWindow::sync() {
    if (ended_) {
        return;
    }
    const bool was = syncing_;
    syncing_ = true;
    if (!sameToolbar(shownToolbar_, form_.toolbar)) {
        rebuildToolbar();
    }
    syncCaptions();
    syncHeaderFields();
    syncCurrentCell();
    syncText1();
    syncCombo1();
    placeOverlays();
    syncTree();
    syncTimer();
    syncPreview();
    syncing_ = was;
}

void MainWindow::syncCaptions() {
    const Captions& c = form_.captions;
    setLabel(label1_, c.label1);
    setLabel(label2_, c.label2);
    setLabel(label3_, c.label3);
    setLabel(label4_, c.label4);
    setCaption(askDatadir_, c.askDatadir);
    setCaption(askImagedir_, c.askImagedir);
    setCaption(expand_, c.expand);
    setCaption(colapse_, c.colapse);
    setCaption(onlymenus_, c.onlymenus);
    setCaption(quit_, c.quit);
    // A screen reader names each control by its caption, a field by the caption beside it.
    const std::pair<QWidget*, const std::string*> spoken[] = {
        {label1_, &c.label1},           {combo2_, &c.label1},
        {label2_, &c.label2},           {combo3_, &c.label2},
        {label3_, &c.label3},           {text2_, &c.label3},
        {label4_, &c.label4},           {text3_, &c.label4},
        {askDatadir_, &c.askDatadir},   {datadir_, &c.askDatadir},
        {askImagedir_, &c.askImagedir}, {imagedir_, &c.askImagedir},
        {expand_, &c.expand},           {colapse_, &c.colapse},
        {onlymenus_, &c.onlymenus},     {quit_, &c.quit},
    };
    for (const auto& [widget, caption] : spoken) {
        const QString name = fromCp1252(*caption);
        if (widget->accessibleName() != name) {
            widget->setAccessibleName(name);
        }
    }
    const std::pair<const char*, const std::string*> entries[] = {
        {"addsub", &c.addsub},
        {"addabove1", &c.addabove1},
        {"remove1", &c.remove1},
        {"addabove2", &c.addabove2},
        {"addbelow2", &c.addbelow2},
        {"remove2", &c.remove2},
        {"removechilden", &c.removechilden},
        {"addimage", &c.addimage},
    };
    for (const auto& [name, caption] : entries) {
        if (auto* a = findChild<QAction*>(QString::fromLatin1(name))) {
            a->setText(fromCp1252(*caption));
        }
    }
}

void MainWindow::syncHeaderFields() {
    showField(text2_, form_.Text2);
    showField(text3_, form_.Text3);
    showField(datadir_, form_.Datadir);
    showField(imagedir_, form_.Imagedir);
    for (auto [combo, field] :
         {std::pair{combo2_, &form_.Combo2}, std::pair{combo3_, &form_.Combo3}}) {
        showItems(combo, field->items);
        if (toCp1252(combo->currentText()) != field->text) {
            combo->setEditText(fromCp1252(field->text));
        }
        if (combo->isHidden() == field->visible) {
            combo->setVisible(field->visible);
        }
    }
    // The label shows a file name, in the file system's own encoding.
    const QString file = QFile::decodeName(QByteArray::fromStdString(form_.decfilename));
    if (decfilename_->text() != file) {
        decfilename_->setText(file);
    }
}

void MainWindow::syncCurrentCell() {
    const Grid& grid = form_.Table;
    if (gridLayoutPending_) {
        // Laid out now rather than by the view's own timer after the first paint, so that a
        // file read is painted once, with the scroll range it needs.
        gridLayoutPending_ = false;
        table_->doItemsLayout();
    }
    QModelIndex wanted;
    if (grid.row() >= 1 && grid.row() - 1 < gridModel_->rowCount()) {
        wanted = gridModel_->index(grid.row() - 1, grid.col());
    }
    if (table_->currentIndex() != wanted) {
        table_->selectionModel()->setCurrentIndex(wanted, QItemSelectionModel::NoUpdate);
    }
    if (grid.topRow() != shownTopRow_) {
        shownTopRow_ = grid.topRow();
        table_->verticalScrollBar()->setValue(grid.topRow() - 1);
    }
}

void MainWindow::syncText1() {
    TextBox& box = form_.Text1;
    // The grid takes the focus back before the box hides, so it does not pass to whatever
    // follows the box.
    const bool focusChanged = box.hasFocus != shownText1Focus_;
    shownText1Focus_ = box.hasFocus;
    if (focusChanged && !box.hasFocus) {
        table_->setFocus(Qt::OtherFocusReason);
    }
    if (text1_->isHidden() == box.visible) {
        text1_->setVisible(box.visible);
    }
    if (toCp1252(text1_->text()) != box.text) {
        text1_->setText(fromCp1252(box.text));
    }
    // A caret past the end of the text stands at the end, and reads back so.
    const int length = static_cast<int>(text1_->text().size());
    const int start = std::clamp(box.selStart, 0, length);
    const int selected = std::clamp(box.selLength, 0, length - start);
    const int shownStart =
        text1_->hasSelectedText() ? text1_->selectionStart() : text1_->cursorPosition();
    const int shownSelected =
        text1_->hasSelectedText() ? static_cast<int>(text1_->selectedText().size()) : 0;
    if (shownStart != start || shownSelected != selected) {
        if (selected > 0) {
            text1_->setSelection(start, selected);
        } else {
            text1_->deselect();
            text1_->setCursorPosition(start);
        }
    }
    box.selStart = start;
    box.selLength = selected;
    if (focusChanged && box.hasFocus && box.visible) {
        text1_->setFocus(Qt::OtherFocusReason);
    }
}

void MainWindow::syncCombo1() {
    const ComboBox& box = form_.Combo1;
    showItems(combo1_, box.items);
    const int index = combo1_->findText(fromCp1252(box.text));
    if (combo1_->currentIndex() != index) {
        combo1_->setCurrentIndex(index);
    }
    if (combo1_->isHidden() == box.visible) {
        const QWidget* focus = QApplication::focusWidget();
        const bool hadFocus =
            focus == nullptr || focus == combo1_ || combo1_->view()->window()->isAncestorOf(focus);
        combo1_->setVisible(box.visible);
        // Shown by a key, it takes the keys that follow; hidden, it gives them back to the grid.
        if (box.visible) {
            combo1_->setFocus(Qt::OtherFocusReason);
        } else if (hadFocus) {
            table_->setFocus(Qt::OtherFocusReason);
        }
    }
}

QRect MainWindow::cellRect(int gridRow, int gridCol) const {
    if (gridRow < 1 || gridRow - 1 >= gridModel_->rowCount() || gridCol < 0 ||
        gridCol >= Grid::kCols) {
        return {};
    }
    return table_->visualRect(gridModel_->index(gridRow - 1, gridCol));
}

void MainWindow::placeOverlays() {
    const QRect cell = cellRect(form_.edit.row, form_.edit.col);
    if (!cell.isValid()) {
        return;
    }
    if (text1_->isVisible() && text1_->geometry() != cell) {
        text1_->setGeometry(cell);
    }
    if (combo1_->isVisible() && combo1_->geometry() != cell) {
        combo1_->setGeometry(cell);
    }
}

void MainWindow::syncTree() {
    const NodeRef highlight = form_.Treeview.alive(form_.treeEvents.treeDropHighlight)
                                  ? form_.treeEvents.treeDropHighlight
                                  : NodeRef{};
    treeModel_->setDropHighlight(highlight);
    const QModelIndex wanted = treeModel_->indexOf(form_.treeEvents.treeSelected);
    if (tree_->currentIndex() != wanted) {
        tree_->selectionModel()->setCurrentIndex(wanted, wanted.isValid()
                                                             ? QItemSelectionModel::ClearAndSelect
                                                             : QItemSelectionModel::Clear);
    }
}

void MainWindow::syncTimer() {
    const int interval = std::max(0, form_.Timer1.interval);
    if (timer1_->interval() != interval) {
        timer1_->setInterval(interval);
    }
    // A timer without an interval does not tick.
    const bool running = form_.Timer1.enabled && interval > 0;
    if (running && !timer1_->isActive()) {
        timer1_->start();
    } else if (!running && timer1_->isActive()) {
        timer1_->stop();
    }
}

void MainWindow::syncPreview() {
    const PreviewState& state = form_.preview;
    const QSize margins(toPixelsX(this, PreviewState::kWidthMarginTwips),
                        toPixelsY(this, PreviewState::kHeightMarginTwips));
    if (state.created && !preview_) {
        preview_ = new PreviewWindow(this, margins);
        preview_->onClosed = [this] { form_.preview.shown = false; };
        // It first opens beside the window, on the tree's side, where it hides none of the
        // window's controls; without room there, on the other side, and on a screen too
        // narrow for either at the screen's edge farthest from the tree. The user may move it
        // from there.
        const QSize size = QSize(state.pictureWidth, state.pictureHeight) + margins;
        const QRect screen = this->screen()->availableGeometry();
        const QRect window = frameGeometry();
        const int top = std::clamp(tree_->mapToGlobal(QPoint(0, 0)).y(), screen.top(),
                                   std::max(screen.top(), screen.bottom() + 1 - size.height()));
        int left = screen.left();
        if (window.right() + 1 + size.width() <= screen.right() + 1) {
            left = window.right() + 1;
        } else if (window.left() - size.width() >= screen.left()) {
            left = window.left() - size.width();
            preview_->growsLeft = true;
        }
        preview_->move(left, top);
    }
    if (!preview_) {
        return;
    }
    if (state.shown) {
        preview_->showPicture(QFile::decodeName(QByteArray::fromStdString(state.picture)),
                              QSize(state.pictureWidth, state.pictureHeight));
    } else if (preview_->isVisible()) {
        preview_->hide();
    }
}

}  // namespace vkl::gui
