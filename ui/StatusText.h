// What the status line says.
#pragma once

#include <string>

#include <QString>

#include "ui/GridRow.h"
#include "ui/StatusLine.h"
#include "ui/WindowParts.h"
#include "ui/Wording.h"

namespace vl {

/// On the left why the database cannot be read, where it cannot; else what is said once; else the
/// current row. On the right what waits, what is lost and what is not saved.
/// Rows are the current one of the selected list, null for none.
class StatusText {
public:
    /// What `parts` holds must outlive it.
    StatusText(const WindowParts& parts, TimeText time);

    StatusLine::Saying saying(const GridRow* row) const;

    /// Says it until another row is current than now.
    void sayOnce(const QString& notice, const GridRow* row);
    void rowChanged(const GridRow* row);

    /// Looks whether the settings can be written.
    void lookWhetherSaved();

    /// Why the database cannot be read, see `troubleText`.
    std::string trouble() const;

private:
    QString rowText(const GridRow& row) const;
    QString notice() const;

    WindowParts parts_;
    TimeText time_;
    QString once_;
    QString onceAt_;  // the GUID of the row it was said at
    bool canSave_ = true;
};

}  // namespace vl
