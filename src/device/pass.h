// The lock in front of the terminal and the firmware update.
#pragma once

#include <QDialog>

namespace Ui {
class Pass;
}

class Pass : public QDialog
{
    Q_OBJECT

public:
    explicit Pass(QWidget *parent = nullptr);
    ~Pass() override;

public slots:
    // Closes with the result 1 if the password is right; else says so and stays open.
    void accept() override;

public:
    Ui::Pass *ui;
};
