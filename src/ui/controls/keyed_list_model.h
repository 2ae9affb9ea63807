#pragma once

#include <QAbstractListModel>
#include <QtQml/qqml.h>
#include <vector>

namespace cratewell {

// A list whose rows each have a key, and which changes only the rows that differ. Derived models find
// what a row shows by its key, before and after a change. Main thread.
class KeyedListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)
public:
    using QAbstractListModel::QAbstractListModel;

    int count() const { return int(m_keys.size()); }
    int rowCount(const QModelIndex &parent = {}) const override;

Q_SIGNALS:
    void countChanged();

protected:
    // A key that stands there a second time is left out.
    void showKeys(const std::vector<QByteArray> &keys);
    // Empty past the ends.
    QByteArray keyAt(int row) const;
    const std::vector<QByteArray> &keys() const { return m_keys; }
    // For every row.
    void notifyChanged(const QList<int> &roles);

private:
    std::vector<QByteArray> m_keys;
};

} // namespace cratewell
