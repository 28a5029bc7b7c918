#include "device/pass.h"

#include "forms/hints.h"
#include "forms/style.h"
#include "ui_pass.h"

#include <QMessageBox>

namespace {

// Keeps curious hands off, no more.
constexpr char password[] = "qz";

} // namespace

Pass::Pass(QWidget *parent)
    : QDialog(parent)
    , ui(new Ui::Pass)
{
    ui->setupUi(this);
    glow::applyStyle(this);
    glow::addHints(this);
}

Pass::~Pass()
{
    delete ui;
}

void Pass::accept()
{
    if (ui->lineEdit->text() == QLatin1String(password)) {
        done(Accepted);
        return;
    }
    QMessageBox::warning(this, QString(), tr("密碼錯誤"), QMessageBox::Ok);
}
