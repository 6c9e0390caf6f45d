#include "player/desktop/library_page.h"

#include <QFontDatabase>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedLayout>
#include <QVBoxLayout>
#include <sstream>
#include <utility>

#include "player/desktop/first_steps.h"
#include "player/desktop/qt_text.h"
#include "player/desktop/track_table.h"

namespace ostrevan::desktop {
namespace {

constexpr const char* columns_name = "library columns";
constexpr const char* sort_name = "library sort";

QString counted(std::size_t count, double seconds) {
    return QStringLiteral("%L1 %2, %3")
        .arg(count)
        .arg(count == 1 ? QStringLiteral("track") : QStringLiteral("tracks"), time_text(seconds));
}

}  // namespace

library_page::library_page(app::session& player, app::kept_texts& kept)
    : player_(player),
      kept_(kept),
      find_(new QLineEdit(this)),
      mistake_(new QLabel(this)),
      listing_bar_(new QWidget(this)),
      listing_name_(new QLabel(listing_bar_)),
      table_(new track_table(view::all_columns(player.services))),
      steps_(new first_steps),
      stack_(new QStackedLayout),
      making_(player.loop),
      measuring_(player.loop),
      measuring_selected_(player.loop) {
    auto* const level = new QVBoxLayout(this);
    level->setContentsMargins(0, 0, 0, 0);
    find_->setPlaceholderText(QStringLiteral("Find: words, or a query such as %rating% GREATER 3"));
    find_->setAccessibleName(QStringLiteral("Find"));
    find_->setClearButtonEnabled(true);
    mistake_->setTextFormat(Qt::PlainText);
    mistake_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));  // it points at a place
    mistake_->setContentsMargins(fontMetrics().averageCharWidth(), 0, 0, 0);
    mistake_->hide();
    listing_name_->setTextFormat(Qt::PlainText);
    auto* const listing_level = new QHBoxLayout(listing_bar_);
    listing_level->setContentsMargins(0, 0, 0, 0);
    listing_level->addWidget(listing_name_, 1);
    auto* const back = new QPushButton(QStringLiteral("Show the &whole library"), listing_bar_);
    listing_level->addWidget(back);
    listing_bar_->hide();
    stack_->addWidget(table_);
    stack_->addWidget(steps_);
    level->addWidget(find_);
    level->addWidget(mistake_);
    level->addWidget(listing_bar_);
    level->addLayout(stack_, 1);

    connect(back, &QPushButton::clicked, this, [this] { show_library(); });
    connect(find_, &QLineEdit::textChanged, this, [this](const QString& text) {
        request_.find = text.trimmed().toStdString();
        request_list();
    });
    connect(find_, &QLineEdit::returnPressed, this, [this] { table_->setFocus(); });
    steps_->on_add_folder = [this] { on_add_folder(); };
    table_->on_activated = [this](std::size_t row) { on_activated(row); };
    table_->on_menu = [this](const QPoint& place) { on_menu(place); };
    table_->on_cell = [this](const view::column& column, std::size_t row, double place) {
        on_cell(column, table_->rows().listing()->tracks()[row], place);
    };
    table_->on_selection = [this] { count_selected(); };
    table_->on_sort = [this](const std::string& column) { sort(column); };
    restore_layout();
    player_.changes.add(*this);
    request_list();
}

library_page::~library_page() { player_.changes.remove(*this); }

void library_page::restore_layout() {
    table_->restore_layout(kept_.get(columns_name));
    std::istringstream lines(kept_.get(sort_name));
    std::string direction;
    for (std::string id; lines >> direction && lines.ignore() && std::getline(lines, id);)
        request_.sort.push_back({id, direction == "down"});
    show_sort_mark();
}

void library_page::keep_layout() {
    kept_.set(columns_name, table_->layout());
    std::string text;
    for (const auto& key : request_.sort) text += (key.descending ? "down " : "up ") + key.column + '\n';
    kept_.set(sort_name, text);
}

void library_page::refresh() {
    if (making_.is_busy()) is_outdated_ = true;
    else request_list();
}

void library_page::request_list() {
    is_outdated_ = false;
    making_.ask([this, &library = player_.library, &fields = player_.fields, columns = table_->rows().columns(),
                 wanted = request_](const std::atomic<bool>&) -> core::latest_work::outcome {
        try {
            auto tracks = view::make_list(library, fields, columns, wanted);
            return [this, tracks = std::move(tracks)]() mutable { show_made(std::move(tracks)); };
        } catch (const system::user_error& mistake) {
            return [this, text = std::string(mistake.what())] { say_mistake(text_of(text)); };
        }
    });
}

void library_page::show_made(metadb_handle_list tracks) {
    say_mistake({});
    const bool is_first = !player_.library.is_enabled() && tracks.empty() && !request_.among;
    stack_->setCurrentWidget(is_first ? static_cast<QWidget*>(steps_) : table_);
    find_->setVisible(!is_first);
    const auto count = tracks.get_count();
    table_->show_listing(std::make_shared<const view::track_listing>(tracks, table_->rows().columns(), player_.fields));
    measuring_.ask([this, count, tracks = std::move(tracks)](const std::atomic<bool>& is_stale) {
        return [this, count, seconds = view::total_length(tracks, is_stale)] {
            shown_text_ = count == 0 ? QString() : counted(count, seconds);
            tell_counts();
        };
    });
    if (is_outdated_) request_list();
}

void library_page::say_mistake(const QString& text) {
    mistake_->setText(text);
    mistake_->setVisible(!text.isEmpty());
}

void library_page::on_values_changed() { table_->rows().renew(); }

void library_page::count_selected() {
    auto tracks = table_->selected();
    const auto count = tracks.get_count();
    measuring_selected_.ask([this, count, tracks = std::move(tracks)](const std::atomic<bool>& is_stale) {
        return [this, count, seconds = view::total_length(tracks, is_stale)] {
            selected_text_ = count < 2 ? QString() : counted(count, seconds) + QStringLiteral(" selected");
            tell_counts();
        };
    });
}

void library_page::tell_counts() {
    if (on_counts) on_counts(shown_text_, selected_text_);
}

void library_page::sort(const std::string& column) {
    view::sort_by(request_, column);
    show_sort_mark();
    request_list();
}

void library_page::show_sort_mark() {
    auto& head = *table_->horizontalHeader();
    const auto& columns = table_->rows().columns();
    const auto first =
        request_.sort.empty() ? columns.end() : std::ranges::find(columns, request_.sort.front().column, &view::column::id);
    head.setSortIndicatorShown(first != columns.end());
    if (first != columns.end())
        head.setSortIndicator(static_cast<int>(first - columns.begin()),
                              request_.sort.front().descending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void library_page::show_listing(const view::track_listing& listing) {
    request_.among = listing.tracks();
    request_.sort.clear();
    find_->clear();
    listing_name_->setText(QStringLiteral("%L1 of the library").arg(listing.row_count()));
    listing_bar_->show();
    show_sort_mark();
    request_list();
}

void library_page::show_library() {
    request_.among.reset();
    listing_bar_->hide();
    request_list();
}

void library_page::mark(const metadb_handle_ptr& playing) { table_->rows().mark(playing); }
void library_page::focus_find() {
    find_->setFocus();
    find_->selectAll();
}
metadb_handle_list library_page::shown() const {
    return table_->rows().listing() ? table_->rows().listing()->tracks() : metadb_handle_list();
}
metadb_handle_list library_page::selected() const { return table_->selected(); }
std::size_t library_page::current_row() const { return table_->current_row(); }

}  // namespace ostrevan::desktop
