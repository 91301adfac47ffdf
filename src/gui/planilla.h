// Texts as a Spanish spreadsheet takes them from the clipboard.
#pragma once

#include <QString>

namespace gui {

// One cell: tabs and line ends become blanks, since they would part it; one that begins with a quote is
// quoted; one that begins like a formula and is no number gets a "'" in front and stays a text.
QString CeldaDePlanilla(QString texto);

// A plain number with its "." (8.5, -1.25) with the operator's ","; any other text as it is.
QString ConComa(const QString& texto);

}  // namespace gui
