#include "player/desktop/first_steps.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace ostrevan::desktop {

first_steps::first_steps() {
    auto* const level = new QVBoxLayout(this);
    auto* const title = new QLabel(QStringLiteral("Your library is empty"), this);
    auto font = title->font();
    font.setPointSizeF(font.pointSizeF() * 3 / 2);
    title->setFont(font);
    auto* const text = new QLabel(QStringLiteral("Choose the folder that holds your music. Its files are only read;\n"
                                                 "play counts and ratings are kept beside them, in your profile."),
                                  this);
    text->setAlignment(Qt::AlignHCenter);
    auto* const add = new QPushButton(QStringLiteral("&Add a music folder..."), this);
    add->setDefault(true);
    connect(add, &QPushButton::clicked, this, [this] {
        if (on_add_folder) on_add_folder();
    });
    level->addStretch();
    for (auto* const each : std::initializer_list<QWidget*>{title, text, add}) level->addWidget(each, 0, Qt::AlignHCenter);
    level->addStretch();
    level->setSpacing(level->spacing() * 2);
}

}  // namespace ostrevan::desktop
