#include "ui/inspector/metadata_model.h"

#include "state/app_state.h"
#include "ui/controls/formats.h"
#include "ui/shell/ui_engine.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

// Codecs whose tracks may carry alpha.
constexpr std::array alphaCodecs{"ap4h"_L1, "ap4x"_L1, "hvc1"_L1};

QString codecLabel(const QString &codec)
{
    return std::ranges::find(alphaCodecs, codec) == alphaCodecs.end() ? codec : codec + u" (alpha capable)"_s;
}

QString sizeText(const MediaInfo &info)
{
    return u"%1 × %2"_s.arg(info.width).arg(info.height);
}

QString channelsText(int channels)
{
    if (channels == 1)
        return u"Mono"_s;
    return channels == 2 ? u"Stereo"_s : QString::number(channels);
}

void addVideoRows(std::vector<MetadataModel::Row> &rows, const MediaInfo &info)
{
    rows.push_back({u"Duration"_s, timeString(info.duration)});
    if (!info.hasVideo())
        return;
    rows.push_back({u"Resolution"_s, sizeText(info)});
    rows.push_back({u"Frame rate"_s, QString::asprintf("%.3g fps", info.frameRate)});
    rows.push_back({u"Codec"_s, codecLabel(codecText(info))});
}

void addAudioRows(std::vector<MetadataModel::Row> &rows, const MediaInfo &info)
{
    if (!info.hasAudio())
        return;
    rows.push_back({u"Duration"_s, timeString(double(info.frames) / info.sampleRate)});
    rows.push_back({u"Sample rate"_s, u"%1 Hz"_s.arg(info.sampleRate)});
    rows.push_back({u"Channels"_s, channelsText(info.channels)});
}

} // namespace

std::vector<MetadataModel::Row> metadataRows(const Asset &asset, const std::optional<MediaInfo> &info,
                                             const std::optional<LUT> &lut)
{
    std::vector<MetadataModel::Row> rows{
        {u"Type"_s, kindLabel(asset.kind) + u" · "_s + asset.url.extension().toUpper()},
        {u"Size"_s, byteText(asset.size)}};
    if (asset.kind == AssetKind::Video && info)
        addVideoRows(rows, *info);
    else if (asset.kind == AssetKind::Image && info && info->width > 0)
        rows.push_back({u"Resolution"_s, sizeText(*info)});
    else if (asset.kind == AssetKind::Audio && info)
        addAudioRows(rows, *info);
    if (lut) {
        rows.push_back({u"Lattice"_s, QString::number(lut->size()) + u'³'});
        rows.push_back({u"Title"_s, lut->title()});
    }
    rows.push_back({u"Added"_s, addedText(asset.added)});
    return rows;
}

MetadataModel::MetadataModel(const AppState &state, Media &media) : m_state(state), m_media(media)
{
    connect(&state, &AppState::selectionChanged, this, &MetadataModel::load);
    const auto showIfMine = [this](const Location &url) {
        if (m_asset && m_asset->url == url)
            load();
    };
    connect(&media, &Media::infoChanged, this, showIfMine);
    connect(&media, &Media::lutChanged, this, showIfMine);
    load();
}

MetadataModel *MetadataModel::create(QQmlEngine *engine, QJSEngine *)
{
    const UiContext &context = UiEngine::contextOf(engine);
    return new MetadataModel(context.state, context.media);
}

void MetadataModel::load()
{
    m_asset = m_state.selection();
    m_request.reset();
    if (m_asset)
        m_request =
            m_asset->kind == AssetKind::Lut ? m_media.requestLut(*m_asset) : m_media.requestInfo(*m_asset);
    show();
}

void MetadataModel::show()
{
    std::vector<Row> rows;
    if (m_asset)
        rows = metadataRows(*m_asset, m_media.info(*m_asset),
                            m_asset->kind == AssetKind::Lut ? m_media.lut(*m_asset) : std::nullopt);
    if (rows == m_rows)
        return;
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int MetadataModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant MetadataModel::data(const QModelIndex &index, int role) const
{
    if (index.row() < 0 || size_t(index.row()) >= m_rows.size())
        return {};
    const Row &row = m_rows[size_t(index.row())];
    if (role == LabelRole)
        return row.label;
    return role == ValueRole || role == Qt::DisplayRole ? row.value : QVariant();
}

QHash<int, QByteArray> MetadataModel::roleNames() const
{
    return {{LabelRole, "label"}, {ValueRole, "value"}};
}

} // namespace cratewell
