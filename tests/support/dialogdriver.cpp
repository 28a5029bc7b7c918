#include "support/dialogdriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>

DialogDriver::DialogDriver(QObject *parent)
    : QObject(parent)
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    connect(&timer, &QTimer::timeout, this, &DialogDriver::poll);
    timer.start(5);
}

void DialogDriver::answerBox(QMessageBox::StandardButton button)
{
    script.append({Kind::Box, [button](QDialog *dialog) {
                       auto *box = qobject_cast<QMessageBox *>(dialog);
                       QAbstractButton *pressed = box->button(button);
                       if (pressed != nullptr) {
                           pressed->click();
                       } else {
                           box->reject();
                       }
                   }});
}

void DialogDriver::answerFile(const QStringList &files)
{
    script.append(
        {Kind::File, [files](QDialog *dialog) {
             auto *question = qobject_cast<QFileDialog *>(dialog);
             if (files.isEmpty()) {
                 question->reject();
                 return;
             }
             // Several names stand in quotes in the name field, relative to the directory shown.
             question->setDirectory(QFileInfo(files.first()).absolutePath());
             QStringList names;
             for (const QString &file : files) {
                 names << (files.size() == 1 ? file : QLatin1Char('"') + QFileInfo(file).fileName() + QLatin1Char('"'));
             }
             question->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(names.join(QLatin1Char(' ')));
             dialog->accept(); // public in QDialog, not in QFileDialog
         }});
}

void DialogDriver::answerColor(const QColor &color)
{
    script.append({Kind::Color, [color](QDialog *dialog) {
                       auto *question = qobject_cast<QColorDialog *>(dialog);
                       if (!color.isValid()) {
                           question->reject();
                           return;
                       }
                       question->setCurrentColor(color);
                       dialog->accept(); // public in QDialog
                   }});
}

void DialogDriver::answerWith(const std::function<void(QDialog *)> &act)
{
    script.append({Kind::Any, act});
}

void DialogDriver::poll()
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (dialog == nullptr || dialog == overlooked || !dialog->isVisible()) {
        return;
    }
    Kind kind = Kind::Any;
    if (auto *box = qobject_cast<QMessageBox *>(dialog)) {
        kind = Kind::Box;
        const QPushButton *standard = box->defaultButton();
        seenBoxes.append({box->windowTitle(), box->text(), box->standardButtons(),
                          standard != nullptr ? box->standardButton(box->defaultButton()) : QMessageBox::NoButton,
                          box->icon(), box->informativeText()});
    } else if (auto *question = qobject_cast<QFileDialog *>(dialog)) {
        kind = Kind::File;
        seenFiles.append({question->windowTitle(), question->directory().path(), question->nameFilters()});
    } else if (qobject_cast<QColorDialog *>(dialog) != nullptr) {
        kind = Kind::Color;
    }
    if (script.isEmpty() || (script.first().kind != kind && script.first().kind != Kind::Any)) {
        unexpected << QString::fromLatin1(dialog->metaObject()->className()) + QLatin1Char(' ') + dialog->windowTitle();
        dialog->reject();
        return;
    }
    const Step step = script.takeFirst();
    step.act(dialog);
}
