#include "console/ConsoleWindow.h"

#include "app/ConsolePanes.h"
#include "app/Session.h"
#include "common/MessageBox.h"
#include "common/RunContext.h"
#include "console/ConsoleLayout.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTimer>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace orbline::console {

namespace {

// The maker's page of the web link.
const QString kMakerPage = u"https://www.kv-orbline.example/"_s;
constexpr int kRow = 26;
constexpr int kRefreshMs = 100;

QGroupBox* AddGroup(QWidget* parent, const QString& caption, int x, int y, int width, int height) {
    auto* group = new QGroupBox(caption, parent);
    group->setGeometry(x, y, width, height);
    return group;
}

QPlainTextEdit* AddTextBox(QWidget* parent, const char* name, int x, int y, int width, int height) {
    auto* box = new QPlainTextEdit(parent);
    box->setObjectName(QString::fromLatin1(name));
    box->setGeometry(x, y, width, height);
    box->setLineWrapMode(QPlainTextEdit::NoWrap);
    return box;
}

// The form's texts end their lines in CR LF; a text box ends them in LF.
QString Shown(const QString& text) {
    return QString(text).replace(u"\r\n"_s, u"\n"_s);
}
QString Entered(const QString& text) {
    return QString(text).replace(u"\n"_s, u"\r\n"_s);
}

}  // namespace

ConsoleWindow::ConsoleWindow() {
    setObjectName(u"Form_TesvaneMain"_s);
    buildLineSettings();
    buildSessionControls();
    buildPanes();
    buildAutomaticData();
    buildCommands();
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &ConsoleWindow::refresh);
    timer->start(kRefreshMs);
    refresh();
}

void ConsoleWindow::showCompact() {
    resize(kCompactWidth, kCompactHeight);
    show();
    refresh();
}

QComboBox* ConsoleWindow::addList(QWidget* parent, const char* name,
                                  ListControl Form_TesvaneMain::*list, int x, int y, int width,
                                  const std::function<void(int)>& chosen) {
    auto* combo = new QComboBox(parent);
    combo->setObjectName(QString::fromLatin1(name));
    combo->setGeometry(x, y, width, kRow - 2);
    // The entries are filled by the load event, before the window exists, and never change.
    combo->addItems((Form().*list).entries);
    combo->setMaxVisibleItems(16);
    lists_.emplace_back(combo, list);
    connect(combo, &QComboBox::activated, this, [this, list, chosen](int index) {
        if (chosen)
            chosen(index);
        else
            (Form().*list).position = index;
        refresh();
    });
    return combo;
}

QCheckBox* ConsoleWindow::addCheck(QWidget* parent, const char* name, const QString& caption,
                                   CheckControl Form_TesvaneMain::*check, int x, int y, int width) {
    auto* box = new QCheckBox(caption, parent);
    box->setObjectName(QString::fromLatin1(name));
    box->setGeometry(x, y, width, kRow - 2);
    checks_.emplace_back(box, check);
    return box;
}

QLabel* ConsoleWindow::addLabel(QWidget* parent, const QString& caption, int x, int y, int width) {
    auto* label = new QLabel(caption, parent);
    label->setGeometry(x, y, width, kRow - 2);
    return label;
}

QPushButton* ConsoleWindow::addButton(QWidget* parent, const char* name, const QString& caption,
                                      int x, int y, int width) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(QString::fromLatin1(name));
    button->setGeometry(x, y, width, kRow + 2);
    return button;
}

void ConsoleWindow::buildLineSettings() {
    QGroupBox* group = AddGroup(this, u"通信条件"_s, 6, 4, 200, 264);
    struct Row {
        const char* name;
        const char16_t* caption;
        ListControl Form_TesvaneMain::*list;
    };
    const Row rows[] = {
        {"comboPort", u"ﾎﾟｰﾄ", &Form_TesvaneMain::comboPort},
        {"comboBaudRate", u"通信速度", &Form_TesvaneMain::comboBaudRate},
        {"comboDataBits", u"ﾃﾞｰﾀﾋﾞｯﾄ", &Form_TesvaneMain::comboDataBits},
        {"comboParity", u"ﾊﾟﾘﾃｨ", &Form_TesvaneMain::comboParity},
        {"comboStopBits", u"ｽﾄｯﾌﾟﾋﾞｯﾄ", &Form_TesvaneMain::comboStopBits},
        {"comboHandShake", u"ﾌﾛｰ制御", &Form_TesvaneMain::comboHandShake},
        {"comboTimeOut", u"ﾀｲﾑｱｳﾄ", &Form_TesvaneMain::comboTimeOut},
        {"comboThread", u"ｽﾚｯﾄﾞ追加", &Form_TesvaneMain::comboThread},
    };
    int y = 20;
    for (const Row& row : rows) {
        addLabel(group, QString::fromUtf16(row.caption), 8, y, 74);
        std::function<void(int)> chosen;
        if (row.list == &Form_TesvaneMain::comboPort)
            chosen = [](int index) {
                Form().comboPort.position = index;
                PortChosen(index);
            };
        addList(group, row.name, row.list, 84, y, 106, chosen);
        y += kRow;
    }
    QCheckBox* connectBox = addCheck(group, "checkConnect", u"接  続"_s,
                                     &Form_TesvaneMain::checkConnect, 84, y + 4, 106);
    connect(connectBox, &QCheckBox::clicked, this, [this](bool on) {
        Form().checkConnect.value = on ? 1 : 0;
        SetConnected(on);
        refresh();
    });
}

void ConsoleWindow::buildSessionControls() {
    QGroupBox* lines = AddGroup(this, u"制御 ・ モニター"_s, 212, 4, 154, 80);
    QCheckBox* rts = addCheck(lines, "checkRts", u"RTS"_s, &Form_TesvaneMain::checkRts, 8, 22, 60);
    QCheckBox* dtr = addCheck(lines, "checkDtr", u"DTR"_s, &Form_TesvaneMain::checkDtr, 8, 48, 60);
    connect(rts, &QCheckBox::clicked, this, [this](bool on) {
        Form().checkRts.value = on ? 1 : 0;
        SetRtsFromBox(on);
        refresh();
    });
    connect(dtr, &QCheckBox::clicked, this, [this](bool on) {
        Form().checkDtr.value = on ? 1 : 0;
        SetDtrFromBox(on);
        refresh();
    });
    QLabel* cts = addLabel(lines, QString(), 76, 22, 70);
    QLabel* dsr = addLabel(lines, QString(), 76, 48, 70);
    cts->setObjectName(u"labelCts"_s);
    dsr->setObjectName(u"labelDsr"_s);
    labels_.emplace_back(cts, &Form_TesvaneMain::labelCts);
    labels_.emplace_back(dsr, &Form_TesvaneMain::labelDsr);

    QPushButton* open = addButton(this, "Cmd_Open", u"通信開始"_s, kCmdOpen.x, kCmdOpen.y);
    QPushButton* stop = addButton(this, "Cmd_Kaijyo", u"通信終了"_s, kCmdKaijyo.x, kCmdKaijyo.y);
    QPushButton* end = addButton(this, "Cmd_End", u"終  了"_s, kCmdEnd.x, kCmdEnd.y);
    QPushButton* clearLog = addButton(this, "Cmd_Log", u"LOGクリア"_s, kCmdLog.x, kCmdLog.y);
    enables_.emplace_back(open, &Form_TesvaneMain::Cmd_OpenEnabled);
    enables_.emplace_back(stop, &Form_TesvaneMain::Cmd_KaijyoEnabled);
    // The start command runs the whole session inside this click; the window goes on being
    // shown from the dialogue's yields.
    connect(open, &QPushButton::clicked, this, [] { Cmd_Open(); });
    connect(stop, &QPushButton::clicked, this, [this] {
        Cmd_Kaijyo();
        refresh();
    });
    connect(end, &QPushButton::clicked, this, [] { Cmd_End(); });
    connect(clearLog, &QPushButton::clicked, this, [this] {
        ClearLog();
        refresh();
    });

    QLabel* date = addLabel(this, QString(), 462, 44, 92);
    date->setObjectName(u"lblSysDate"_s);
    date->setWordWrap(true);
    date->setGeometry(462, 42, 92, 54);
    labels_.emplace_back(date, &Form_TesvaneMain::lblSysDate);
    txtLog_ = AddTextBox(this, "Txt_Log", 212, 104, 340, 164);
    txtLog_->setReadOnly(true);
}

void ConsoleWindow::buildPanes() {
    struct Side {
        Pane pane;
        const char16_t* caption;
        int x;
    };
    for (const Side side :
         {Side{Pane::Send, u"送信データ", 6}, Side{Pane::Receive, u"受信データ", 282}}) {
        const bool send = side.pane == Pane::Send;
        QGroupBox* group = AddGroup(this, QString::fromUtf16(side.caption), side.x, 274, 270, 226);
        QPlainTextEdit* box = AddTextBox(group, send ? "textDataW" : "textDataR", 8, 20, 254, 110);
        box->installEventFilter(this);
        box->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(box, &QWidget::customContextMenuRequested, this, [this, box, side](QPoint at) {
            QMenu menu;
            menu.addAction(LoadPaneTitle(side.pane), this, [this, side] { loadPane(side.pane); });
            menu.addAction(SavePaneTitle(side.pane), this, [this, side] { savePane(side.pane); });
            menu.exec(box->mapToGlobal(at));
        });
        (send ? textDataW_ : textDataR_) = box;

        addLabel(group, u"モード"_s, 8, 134, 50);
        // The mode change converts by the old position before it moves to the new one.
        addList(group, send ? "comboModeW" : "comboModeR",
                send ? &Form_TesvaneMain::comboModeW : &Form_TesvaneMain::comboModeR, 60, 134, 140,
                [side](int index) { ChangePaneMode(side.pane, index); });
        QPushButton* clear =
            addButton(group, send ? "buttonClearW" : "buttonClearR", u"クリア"_s, 8, 190, 60);
        QPushButton* format =
            addButton(group, send ? "buttonFormatW" : "buttonFormatR", u"整形"_s, 72, 190, 60);
        connect(clear, &QPushButton::clicked, this, [this, side] {
            ClearPane(side.pane);
            refresh();
        });
        connect(format, &QPushButton::clicked, this, [this, side] {
            FormatPane(side.pane);
            refresh();
        });
        addLabel(group, u"データサイズ"_s, 140, 162, 76);
        QLabel* count = addLabel(group, QString(), 216, 162, 46);
        count->setObjectName(QString::fromLatin1(send ? "labelBytesW" : "labelBytesR"));
        count->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        labels_.emplace_back(
            count, send ? &Form_TesvaneMain::labelBytesW : &Form_TesvaneMain::labelBytesR);
        if (send) {
            addLabel(group, u"デリミタ"_s, 8, 162, 50);
            addList(group, "comboDelimiter", &Form_TesvaneMain::comboDelimiter, 60, 162, 76);
            QPushButton* write = addButton(group, "buttonWrite", u"送  信"_s, 200, 132, 62);
            enables_.emplace_back(write, &Form_TesvaneMain::buttonWriteEnabled);
            connect(write, &QPushButton::clicked, this, [this] {
                WriteSendPane();
                refresh();
            });
        } else {
            enables_.emplace_back(format, &Form_TesvaneMain::buttonFormatREnabled);
            QPushButton* update = addButton(group, "buttonUpdateR", u"更新"_s, 136, 190, 60);
            enables_.emplace_back(update, &Form_TesvaneMain::buttonUpdateREnabled);
            connect(update, &QPushButton::clicked, this, [this] {
                UpdateReceivePane();
                refresh();
            });
            QCheckBox* automatic = addCheck(group, "checkAutoUpdateR", u"自動更新"_s,
                                            &Form_TesvaneMain::checkAutoUpdateR, 8, 162, 90);
            connect(automatic, &QCheckBox::clicked, this, [this](bool on) {
                SetAutoUpdateReceive(on);
                refresh();
            });
        }
    }
}

void ConsoleWindow::buildAutomaticData() {
    QGroupBox* group = AddGroup(this, u"送信データ自動生成"_s, 6, 504, 546, 56);
    addLabel(group, u"最小値"_s, 8, 22, 42);
    addList(group, "comboMin", &Form_TesvaneMain::comboMin, 50, 22, 100);
    addLabel(group, u"最大値"_s, 156, 22, 42);
    addList(group, "comboMax", &Form_TesvaneMain::comboMax, 198, 22, 100);
    addLabel(group, u"送信条件"_s, 304, 22, 54);
    addList(group, "comboCondition", &Form_TesvaneMain::comboCondition, 358, 22, 90);
    QCheckBox* loop = addCheck(group, "checkLoopWrite", u"連続送信"_s,
                               &Form_TesvaneMain::checkLoopWrite, 456, 22, 86);
    connect(loop, &QCheckBox::clicked, this, [this](bool on) {
        informIfAny(SetLoopWrite(on));
        refresh();
    });
}

void ConsoleWindow::buildCommands() {
    // The help commands have no control of their own on the form: they sit in its menu.
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, [this](QPoint at) {
        QMenu menu;
        menu.addAction(u"Readme"_s, this, [this] {
            const ReadmeTarget readme = FindReadme(QCoreApplication::applicationDirPath());
            if (readme.path.isEmpty())
                informIfAny(readme.missing);
            else
                QDesktopServices::openUrl(QUrl::fromLocalFile(readme.path));
        });
        menu.addAction(u"Web"_s, this, [] { QDesktopServices::openUrl(QUrl(kMakerPage)); });
        menu.exec(mapToGlobal(at));
    });
}

QPlainTextEdit* ConsoleWindow::paneBox(Pane pane) const {
    return pane == Pane::Send ? textDataW_ : textDataR_;
}

void ConsoleWindow::informIfAny(const QString& text) {
    if (!text.isEmpty()) ShowMessageBox(text, BoxIcon::Information);
}

void ConsoleWindow::loadPane(Pane pane) {
    const QString path =
        QFileDialog::getOpenFileName(this, LoadPaneTitle(pane), QString(), PaneFileFilter());
    if (path.isEmpty()) return;
    LoadPane(pane, path);
    refresh();
}

void ConsoleWindow::savePane(Pane pane) {
    const QString path =
        QFileDialog::getSaveFileName(this, SavePaneTitle(pane), QString(), PaneFileFilter());
    if (path.isEmpty()) return;
    informIfAny(SavePane(pane, path));
}

bool ConsoleWindow::eventFilter(QObject* watched, QEvent* event) {
    for (const Pane pane : {Pane::Send, Pane::Receive}) {
        if (watched != paneBox(pane)) continue;
        if (event->type() == QEvent::FocusIn) PaneTextEntered(pane);
        if (event->type() == QEvent::FocusOut) {
            PaneTextLeft(pane, Entered(paneBox(pane)->toPlainText()));
            refresh();
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ConsoleWindow::refresh() {
    const Form_TesvaneMain& f = Form();
    if (windowTitle() != f.Caption) setWindowTitle(f.Caption);
    for (const auto& [combo, list] : lists_) {
        const QSignalBlocker quiet(combo);
        const ListControl& model = f.*list;
        combo->setCurrentIndex(static_cast<int>(model.position));
        combo->setEnabled(model.enabled);
    }
    for (const auto& [box, check] : checks_) {
        const QSignalBlocker quiet(box);
        box->setChecked((f.*check).value == 1);
        box->setEnabled((f.*check).enabled);
    }
    for (const auto& [widget, enabled] : enables_) widget->setEnabled(f.*enabled);
    for (const auto& [label, text] : labels_)
        if (label->text() != f.*text) label->setText(f.*text);
    // A box being typed in keeps what the person typed until they leave it.
    for (const Pane pane : {Pane::Send, Pane::Receive}) {
        QPlainTextEdit* box = paneBox(pane);
        const QString text = Shown(pane == Pane::Send ? f.textDataW : f.textDataR);
        if (!box->hasFocus() && box->toPlainText() != text) box->setPlainText(text);
    }
    if (shownLogRevision_ != f.Txt_Log.revision()) {
        shownLogRevision_ = f.Txt_Log.revision();
        txtLog_->setPlainText(Shown(f.Txt_Log.text()));
    }
}

void ConsoleWindow::closeEvent(QCloseEvent* event) {
    // The close button is the close request: it ends the process.
    event->ignore();
    UnloadForm();
}

}  // namespace orbline::console
