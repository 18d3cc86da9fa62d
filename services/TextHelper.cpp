#include "services/TextHelper.h"

QList<QString> TextHelper::splitAndTrim(const QString& text, const QString& separator)
{
    QList<QString> pieces;
    for (const QString& piece : text.split(separator)) {
        const QString trimmed = piece.trimmed();
        if (!trimmed.isEmpty())
            pieces.append(trimmed);
    }
    return pieces;
}
