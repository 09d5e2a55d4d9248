#pragma once

#include <QImage>
#include <QPixmap>
#include <QString>

namespace tarvo::ui {

/// A photograph that covers a window, and a blurred copy for behind the frosted glass. Both are made once for each
/// size. The photograph is decoded no larger than it is shown.
class PhotoBackdrop
{
public:
    explicit PhotoBackdrop(QString path) : m_path(std::move(path)) {}

    /// Makes the pictures for a window of `size` at `devicePixelRatio`. False when the photograph can't be read.
    bool fit(const QSize &size, qreal devicePixelRatio);

    /// Both null until fit() has succeeded.
    const QPixmap &photograph() const { return m_photograph; }
    /// Small; to be drawn stretched over the whole window.
    const QPixmap &blurred() const { return m_blurred; }

    QString path() const { return m_path; }
    /// Of the photograph as decoded, in pixels.
    QSize imageSize() const { return m_source.size(); }

private:
    bool decode(const QSize &pixels);

    QString m_path;
    QSize m_nativeSize;
    QImage m_source;
    QPixmap m_photograph;
    QPixmap m_blurred;
    bool m_failed = false;
};

} // namespace tarvo::ui
