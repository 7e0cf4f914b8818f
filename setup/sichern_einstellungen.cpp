#include "setup/sichern_einstellungen.h"

#include "core/atomic_file.h"
#include "setup/backup_settings.h"
#include "setup/setup_widgets.h"
#include "ui/keyboard_focus.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStorageInfo>
#include <QTimer>
#include <QTreeView>
#include <QVBoxLayout>

namespace kolibrino::setup {
namespace {

// File systems that hold no user's folders.
bool IsPseudoFileSystem(const QByteArray& type) {
    static const QList<QByteArray> pseudo = {"proc",        "sysfs",      "devtmpfs", "devpts",     "cgroup",
                                             "cgroup2",     "securityfs", "pstore",   "debugfs",    "tracefs",
                                             "mqueue",      "hugetlbfs",  "fusectl",  "configfs",   "bpf",
                                             "binfmt_misc", "autofs",     "efivarfs", "rpc_pipefs", "nsfs"};
    return pseudo.contains(type);
}

QString NoSlash(QString path) {
    while (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

} // namespace

QStringList SichernEinstellungen::Volumes() {
    QStringList roots{QStringLiteral("/")};
    for (const QStorageInfo& v : QStorageInfo::mountedVolumes()) {
        if (!v.isValid() || !v.isReady() || IsPseudoFileSystem(v.fileSystemType())) continue;
        const QString root = v.rootPath();
        if (root.startsWith(QLatin1String("/proc")) || root.startsWith(QLatin1String("/sys")) ||
            root.startsWith(QLatin1String("/dev")) || root.startsWith(QLatin1String("/run")))
            continue;
        if (!roots.contains(root)) roots << root;
    }
    return roots;
}

SichernEinstellungen::SichernEinstellungen(Model& m, Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), m_(m), dialogs_(dialogs) {
    setObjectName(QStringLiteral("SichernEinstellungen"));
    setWindowTitle(QStringLiteral("Zusätzliches Sichern Einstellungen"));
    setModal(true);

    check1_ = new QCheckBox(QStringLiteral("Zusätzliches &Sichern EIN"), this);
    check1_->setObjectName(QStringLiteral("Check1"));
    drive1_ = new QComboBox(this);
    drive1_->setObjectName(QStringLiteral("Drive1"));
    drive1_->addItems(Volumes());
    fs_ = new QFileSystemModel(this);
    fs_->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot | QDir::Drives);
    fs_->setReadOnly(false);
    fs_->setRootPath(QStringLiteral("/"));
    dir1_ = new QTreeView(this);
    dir1_->setObjectName(QStringLiteral("Dir1"));
    dir1_->setModel(fs_);
    for (int c = 1; c < fs_->columnCount(); ++c)
        dir1_->hideColumn(c);
    dir1_->header()->hide();
    dir1_->setMinimumHeight(240);
    text1_ = new QLineEdit(this);
    text1_->setObjectName(QStringLiteral("Text1"));
    text1_->setReadOnly(true);
    auto* command3 = Button(QStringLiteral("&Neuer Ordner"), QStringLiteral("Command3"), this);
    auto* command2 = Button(QStringLiteral("&OK"), QStringLiteral("Command2"), this);
    auto* command1 = Button(QStringLiteral("&Abbrechen"), QStringLiteral("Command1"), this);
    for (QPushButton* b : {command3, command2, command1})
        b->setMinimumWidth(110);

    auto* grid = new QVBoxLayout(this);
    grid->addWidget(check1_);
    grid->addSpacing(6);
    grid->addWidget(new QLabel(QStringLiteral("Sicherungslaufwerk"), this));
    grid->addWidget(drive1_);
    grid->addWidget(new QLabel(QStringLiteral("Ordner in den gesichert wird"), this));
    grid->addWidget(dir1_, 1);
    grid->addWidget(new QLabel(QStringLiteral("Sicherungsordner"), this));
    grid->addWidget(text1_);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(command3);
    buttons->addStretch();
    buttons->addWidget(command2);
    buttons->addWidget(command1);
    grid->addLayout(buttons);

    connect(drive1_, &QComboBox::textActivated, this, &SichernEinstellungen::ChooseVolume);
    // A folder is chosen when it is opened (double click or Enter), not when the
    // selection merely passes over it, so the keyboard can walk past a refused one.
    connect(dir1_, &QTreeView::activated, this, [this](const QModelIndex& index) {
        if (!selecting_ && index.isValid()) ChooseFolder(fs_->filePath(index));
    });
    // The tree fills in the background: keep the chosen folder in view as it grows.
    connect(fs_, &QFileSystemModel::directoryLoaded, this, [this] {
        // Rows are sorted a moment after they arrive; scroll once they stand.
        QTimer::singleShot(50, this, [this] {
            if (dir1_->currentIndex().isValid())
                dir1_->scrollTo(dir1_->currentIndex(), QAbstractItemView::PositionAtCenter);
        });
    });
    connect(command3, &QPushButton::clicked, this, &SichernEinstellungen::NewFolder);
    connect(command2, &QPushButton::clicked, this, &SichernEinstellungen::OkClicked);
    connect(command1, &QPushButton::clicked, this, &SichernEinstellungen::reject);

    // Load.
    const BackupSettings s = ReadBackupSettings(m_);
    check1_->setChecked(s.enabled);
    if (!s.folder.isEmpty()) {
        const QString folder = NoSlash(s.folder);
        text1_->setText(folder);
        const QString root = QStorageInfo(folder).rootPath();
        const int i = drive1_->findText(root);
        if (i >= 0) drive1_->setCurrentIndex(i);
        dir1_->setRootIndex(fs_->index(drive1_->currentText()));
        SelectInTree(folder);
    } else {
        dir1_->setRootIndex(fs_->index(drive1_->currentText()));
    }
    resize(460, 560);
    SelectAllOnKeyboardFocus(this);
}

void SichernEinstellungen::SelectInTree(const QString& folder) {
    const QModelIndex index = fs_->index(folder);
    if (!index.isValid()) return;
    selecting_ = true;
    dir1_->setCurrentIndex(index);
    dir1_->scrollTo(index);
    selecting_ = false;
}

void SichernEinstellungen::ChooseVolume(const QString& root) {
    const int i = drive1_->findText(root);
    if (i >= 0) drive1_->setCurrentIndex(i);
    dir1_->setRootIndex(fs_->index(root));
    ChooseFolder(root);
}

void SichernEinstellungen::ChooseFolder(const QString& folder) {
    const QString shown = CheckChosenFolder(m_, dialogs_, folder);
    // Tree and field show the same folder.
    SelectInTree(shown);
    text1_->setText(shown);
}

void SichernEinstellungen::NewFolder() {
    QString parent = text1_->text();
    const QModelIndex current = dir1_->currentIndex();
    if (current.isValid()) parent = fs_->filePath(current);
    if (parent.isEmpty()) parent = drive1_->currentText();
    const QString made = CreateNewFolder(dialogs_, parent);
    if (made.isEmpty()) return;
    SelectInTree(made);
    ChooseFolder(made);
}

void SichernEinstellungen::OkClicked() {
    if (!SaveBackupSettings(m_, dialogs_, check1_->isChecked(), text1_->text())) return;
    accept();
}

bool SichernEinstellungen::Enabled() const {
    return check1_->isChecked();
}
QString SichernEinstellungen::Folder() const {
    return text1_->text();
}

} // namespace kolibrino::setup
