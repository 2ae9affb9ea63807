#pragma once

#include <QAbstractItemModel>
#include <functional>
#include <vector>

namespace cratewell::test {

// What a view knows of a model that it asks only about the rows it is told of: must always equal the model's.
template<typename Row> class RowView
{
public:
    RowView(const QAbstractItemModel &model, std::function<Row(int)> read)
        : m_model(model), m_read(std::move(read))
    {
        const auto on = [&](auto signal, auto take) { QObject::connect(&model, signal, &m_context, take); };
        on(&QAbstractItemModel::rowsInserted, [this](const QModelIndex &, int first, int last) {
            for (int row = first; row <= last; ++row)
                m_rows.insert(m_rows.begin() + row, m_read(row));
            inserted += last - first + 1;
            ++runs;
        });
        on(&QAbstractItemModel::rowsRemoved, [this](const QModelIndex &, int first, int last) {
            m_rows.erase(m_rows.begin() + first, m_rows.begin() + last + 1);
            removed += last - first + 1;
            ++runs;
        });
        on(&QAbstractItemModel::dataChanged, [this](const QModelIndex &first, const QModelIndex &last) {
            for (int row = first.row(); row <= last.row(); ++row)
                m_rows[size_t(row)] = m_read(row);
            changed += last.row() - first.row() + 1;
        });
        on(&QAbstractItemModel::layoutChanged, [this] {
            m_rows = ofModel();
            ++layouts;
        });
        on(&QAbstractItemModel::modelReset, [this] {
            m_rows = ofModel();
            ++resets;
        });
        m_rows = ofModel();
    }

    const std::vector<Row> &rows() const { return m_rows; }
    bool agrees() const { return m_rows == ofModel(); }
    void forgetCounts() { inserted = removed = changed = runs = layouts = resets = 0; }

    int inserted = 0;
    int removed = 0;
    int changed = 0;
    int runs = 0; // of inserted or removed rows
    int layouts = 0;
    int resets = 0;

private:
    std::vector<Row> ofModel() const
    {
        std::vector<Row> rows;
        for (int row = 0; row < m_model.rowCount(); ++row)
            rows.push_back(m_read(row));
        return rows;
    }

    const QAbstractItemModel &m_model;
    const std::function<Row(int)> m_read;
    QObject m_context;
    std::vector<Row> m_rows;
};

} // namespace cratewell::test
