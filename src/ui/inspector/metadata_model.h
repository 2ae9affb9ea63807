#pragma once

#include "media/media.h"

#include <QAbstractListModel>
#include <QtQml/qqml.h>
#include <optional>
#include <vector>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

class AppState;

// What the inspector says about the file of the focused asset: pairs of a label and a value, those at once
// that the vault knows, the rest as soon as the file has been read. What cannot be read is left out. Main
// thread.
class MetadataModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    enum Role { LabelRole = Qt::UserRole + 1, ValueRole };
    struct Row
    {
        QString label;
        QString value;
        friend bool operator==(const Row &, const Row &) = default;
    };

    MetadataModel(const AppState &state, Media &media);
    static MetadataModel *create(QQmlEngine *engine, QJSEngine *);

    const std::vector<Row> &rows() const { return m_rows; }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    void load();
    void show();

    const AppState &m_state;
    Media &m_media;
    std::optional<Asset> m_asset;
    std::unique_ptr<PreviewRequest> m_request;
    std::vector<Row> m_rows;
};

// The rows of an asset; `info` and `lut` stand for what is not known (yet) when they are empty.
std::vector<MetadataModel::Row> metadataRows(const Asset &asset, const std::optional<MediaInfo> &info,
                                             const std::optional<LUT> &lut);

} // namespace cratewell
