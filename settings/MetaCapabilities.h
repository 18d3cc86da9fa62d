#pragma once

#include <QString>
#include <QVariantMap>

class MetaDescription;

// The capability object of one described property: every text a settings page or a settings
// command needs to show and edit it. Values are texts ("true"/"false" for the flags), except
// "enums", "enumsTranslations" and "pickExtensions", which are lists of texts.
//
// Derivations:
// - "hideDefault": a NoDefault entry, or no usable Default entry.
// - "readOnly": a ReadOnly entry, no Editable "true" entry, or a property without a writer.
// - "hidden": a NotVisible entry, or a visibility condition that fails right now.
// - "min", "max", "step": the entry's number in its shortest form ("1.0f" -> "1"); an entry
//   that is not a number is passed on as written; empty when absent.
// - "prefix", "suffix": the entry without the "!-" marker, which means "do not translate";
//   the translated forms are looked up in the context "Generic" unless so marked.
// - "category": as written ("1.Common"); "categoryTranslated": without the ordering prefix,
//   translated ("Common").
// - "enum": the enumeration's name ("GeneratorType"), "enums": its keys in order; their
//   translations use the enumeration's own context first, then "Generic".
// - "specialType": the kind ("PickFile"), "pickOption": the option ("*.edf *.bdf"),
//   "pickExtensions": the extensions of that option without "*." (["edf", "bdf"]).
// Also present: "precision", "placeholder", "suggestions", "priority", "icon".
class MetaCapabilities
{
public:
    static QVariantMap build(const MetaDescription& description);
    static QString translated(const QString& text);
    static QString withoutMarker(const QString& text);
    static QString numberEntryText(const QString& entry);
};
