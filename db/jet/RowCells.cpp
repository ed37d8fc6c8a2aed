#include "db/jet/RowCells.h"

#include <functional>

#include "LongValue.h"
#include "Row.h"
#include "RowCursorState.h"
#include "TextCode.h"
#include "Value.h"

namespace vl::jet {

namespace {

// Whether the bytes are some of the row's, which stay as long as the cursor does not move.
bool isWithin(ByteView row, ByteView bytes) noexcept {
    const std::less_equal<> notBehind;  // a plain comparison means nothing between two places
    return notBehind(row.data(), bytes.data()) &&
           notBehind(bytes.data() + bytes.size(), row.data() + row.size());
}

}  // namespace

struct RowCells::Plan {
    struct Field {
        FieldPlace place;
        ColumnType type;
    };
    explicit Plan(std::shared_ptr<const TableDefinition> of) : table(std::move(of)) {
        for (const Column& column : table->columns) {
            fields.push_back({FieldPlace(column), column.type});
        }
    }
    std::shared_ptr<const TableDefinition> table;
    std::vector<Field> fields;  // by column
};

RowCells::RowCells() = default;
RowCells::~RowCells() = default;

void RowCursor::readAll(RowCells& to) const {
    const State& s = *state_;
    const std::vector<Column>& columns = s.table->columns;
    if (!to.plan_ || to.plan_->table != s.table) {
        to.plan_ = std::make_unique<RowCells::Plan>(s.table);
        to.cells_.resize(columns.size());
        to.decoded_.resize(columns.size());
    }
    const RowView row = s.row;
    const Origin& origin = s.place.page.origin();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const auto& [place, type] = to.plan_->fields[i];
        Cell& cell = to.cells_[i];
        if (type == ColumnType::Boolean) {
            cell.flag = row.bit(place);
            cell.kind = Cell::Kind::Flag;
            continue;
        }
        const auto setText = [&, &decoded = to.decoded_[i]](ByteView bytes) {
            const auto plain = isWithin(s.place.bytes, bytes) ? plainTextIn(bytes) : std::nullopt;
            if (!plain) {
                decoded = decodeText(bytes, origin);
            }
            cell.text = plain ? *plain : std::string_view(decoded);
            cell.kind = Cell::Kind::Text;
        };
        ByteView bytes;
        if (const auto found = row.find(place, bytes); found != RowView::Found::Value) {
            if (found == RowView::Found::Outside) {
                row.field(columns[i]);  // throws, and says where
            }
            cell.kind = Cell::Kind::Null;
            continue;
        }
        switch (type) {
            case ColumnType::Long:
                cell.whole = longFrom(columns[i], bytes, origin);
                cell.kind = Cell::Kind::Whole;
                break;
            case ColumnType::Date:
                cell.date = dateFrom(columns[i], bytes, origin);
                cell.kind = Cell::Kind::Date;
                break;
            case ColumnType::Text:
                setText(bytes);
                break;
            case ColumnType::Memo:
                setText(LongValue(s.file, bytes, origin).bytes());
                break;
            default:
                cell.kind = Cell::Kind::Other;
        }
    }
}

}  // namespace vl::jet
