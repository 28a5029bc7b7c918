#include "library/about.h"

#include "forms/hints.h"
#include "forms/recentactions.h"
#include "forms/style.h"
#include "show/base/appsettings.h"
#include "show/base/installation.h"
#include "show/base/programversion.h"
#include "show/base/resources.h"
#include "show/base/startfolder.h"
#include "show/base/updatereply.h"
#include "show/model/recoverystore.h"
#include "ui_about.h"

#include <QDebug>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QProcess>

namespace {

// A version line and a note; what goes on beyond this comes from no update server.
constexpr qint64 longestReply = 1 << 20;

Ui::about *newForm()
{
    glow::initResources();
    return new Ui::about;
}

// An empty body when the server was not reached or did not answer with success.
QByteArray bodyOf(QNetworkReply *reply)
{
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    // Other schemes than HTTP have no status.
    const bool succeeded = status == 0 || (status >= 200 && status < 300);
    return reply->error() == QNetworkReply::NoError && succeeded ? reply->readAll() : QByteArray();
}

// What the about box says: the licence, whose work is in the program, and where things are.
QString particularsText()
{
    const QString manual = glow::manualPage(glow::hint("manual.zh-TW.html"));
    const QStringList lines{
        glow::hint(QT_TRANSLATE_NOOP("Hints", "授權：GPL-3.0-or-later，不附任何擔保")),
        glow::hint(QT_TRANSLATE_NOOP("Hints", "程式庫：Qt %1（LGPL-3.0）；聲音由 GStreamer（LGPL-2.1）解碼"))
            .arg(QLatin1String(qVersion())),
        glow::hint(QT_TRANSLATE_NOOP("Hints", "手冊：%1"))
            .arg(QFileInfo(manual).isFile() ? QDir::toNativeSeparators(manual) + QStringLiteral(" (F1), man glowsmith")
                                            : QStringLiteral("man glowsmith")),
        glow::hint(QT_TRANSLATE_NOOP("Hints", "未儲存光舞的副本：%1"))
            .arg(QDir::toNativeSeparators(glow::RecoveryStore::standardFolder()))};
    return lines.join(u'\n');
}

void startUpdater()
{
    const QString name = QStringLiteral("updater.exe");
    // Not every system looks for a bare name in the working directory.
    const QString local = QDir::current().absoluteFilePath(name);
    QProcess::startDetached(QFileInfo::exists(local) ? local : name, QStringList());
}

} // namespace

int about::unanswered = 0;

about::about(QWidget *parent)
    : QDialog(parent)
    , appVersion(glow::programVersion)
    , ui(newForm())
{
    ui->setupUi(this);
    glow::applyStyle(this);
    showTexts();
    on_pushButton_3_clicked();
    const QString last = AppSettings().value(AppSettings::projectKey, QStringLiteral("null")).toString();
    if (last != QLatin1String("null")) {
        ui->load_current->setText(last);
        ui->load_current->setToolTip(last.toHtmlEscaped() + QStringLiteral("<br>") +
                                     glow::hint(QT_TRANSLATE_NOOP("Hints", "按右鍵：最近的專案")));
        ui->load_current->setContextMenuPolicy(Qt::ActionsContextMenu);
        ui->load_current->addActions(glow::recentActions(this, [this](const QString &path) {
            loadPath = path;
            close();
        }));
    } else {
        ui->load_current->hide();
    }
}

void about::showTexts()
{
    glow::addHints(this);
    ui->label_3->setText(QStringLiteral("Glowsmith ver") + QString::number(appVersion));
    if (glow::updateUrl().isEmpty()) {
        ui->pushButton_3->setText(glow::hint(QT_TRANSLATE_NOOP("Hints", "未設定更新位址")));
        ui->pushButton_3->setToolTip(glow::hint(
            QT_TRANSLATE_NOOP("Hints", "更新位址由 GLOWSMITH_UPDATE_URL 或 glowsmith.ini 的 update/url 設定")));
    }
}

void about::offerEnglish(const std::function<void()> &speakEnglish)
{
    auto *line = new QPushButton(QStringLiteral("English"), this);
    line->setObjectName(QStringLiteral("choose_english"));
    line->setFlat(true);
    line->setAutoDefault(false);
    line->setToolTip(QStringLiteral("Use the program in English"));
    ui->horizontalLayout_51->insertWidget(ui->horizontalLayout_51->indexOf(ui->pushButton_3), line);
    setTabOrder(ui->pushButton_3, line);
    connect(line, &QPushButton::clicked, this, [this, line, speakEnglish] {
        speakEnglish();
        ui->pushButton->setToolTip(QString()); // hints of their old names
        ui->pushButton_2->setToolTip(QString());
        ui->retranslateUi(this);
        showTexts();
        line->hide();
        ui->pushButton0->setFocus();
    });
}

about::~about()
{
    for (QNetworkAccessManager *manager : qAsConst(managers)) {
        manager->disconnect(this);
    }
    qDeleteAll(managers);
    delete ui;
}

void about::showAsAboutBox()
{
    about dialog;
    dialog.ui->Load_frame->hide();
    auto *particulars = new QLabel(particularsText(), &dialog);
    particulars->setObjectName(QStringLiteral("particulars"));
    particulars->setTextFormat(Qt::PlainText);
    particulars->setTextInteractionFlags(Qt::TextSelectableByMouse);
    dialog.layout()->addWidget(particulars);
    dialog.exec();
}

int about::unansweredChecks()
{
    return unanswered;
}

void about::on_pushButton_clicked()
{
    QDesktopServices::openUrl(glow::storeUrl());
}

void about::on_pushButton_2_clicked()
{
    QDesktopServices::openUrl(glow::siteUrl());
}

void about::on_pushButton_3_clicked()
{
    const QUrl address = glow::updateUrl();
    if (address.isEmpty()) {
        return; // the button says so
    }
    networkManager = new QNetworkAccessManager;
    managers.append(networkManager);
    ++unanswered;
    connect(networkManager, &QNetworkAccessManager::finished, this, &about::replyFinished);
    reply = networkManager->get(QNetworkRequest(address));
#if QT_VERSION >= QT_VERSION_CHECK(5, 15, 0)
    connect(reply, &QNetworkReply::errorOccurred, this, &about::slotError);
#else
    connect(reply, QOverload<QNetworkReply::NetworkError>::of(&QNetworkReply::error), this, &about::slotError);
#endif
    QNetworkReply *started = reply;
    connect(started, &QNetworkReply::downloadProgress, started, [started](qint64 received) {
        if (received > longestReply) {
            started->abort();
        }
    });
}

void about::slotError(QNetworkReply::NetworkError code)
{
    Q_UNUSED(code)
    const auto *failed = qobject_cast<QNetworkReply *>(sender());
    qDebug() << "ERR" << (failed != nullptr ? failed->errorString() : QString());
}

void about::replyFinished(QNetworkReply *reply)
{
    --unanswered;
    const glow::UpdateReply answer = glow::parseUpdateReply(bodyOf(reply));
    if (answer.versionLine.isEmpty()) {
        QMessageBox::about(this, QString(), tr("<font color='white'>無法連線至更新伺服器</font>"));
        return;
    }
    qDebug() << answer.versionLine;
    if (appVersion >= answer.version) {
        ui->pushButton_3->setText(tr("已是最新版本"));
    } else if (QMessageBox::question(this, tr("有更新 ") + tr("最新版為ver") + answer.versionLine,
                                     QStringLiteral("<font color='white'>") + tr("是否更新？<br>") + answer.note +
                                         QStringLiteral("</font>"),
                                     QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes) == QMessageBox::Yes) {
        // Closing sets the result to 0, so the result comes after it.
        close();
        setResult(1);
        startUpdater();
    }
    reply->deleteLater();
}

void about::on_pushButton0_clicked()
{
    close();
}

void about::on_load_button_clicked()
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("讀檔"), glow::startForOpening(QDir::homePath() + QStringLiteral("/Documents")),
        QStringLiteral("*.gsw *.gsw3"));
    if (!path.isEmpty()) {
        loadPath = path;
        close();
    }
}

void about::on_load_current_clicked()
{
    loadPath = ui->load_current->text();
    close();
}
