#pragma once

#include <QFrame>

class QListWidget;

namespace orvane::desk {

/// What went wrong, at the upper edge of the window until the user has read it. Nothing is lost, nothing
/// blocks.
class MessageBar final : public QFrame {
    Q_OBJECT
public:
    explicit MessageBar(QWidget* parent = nullptr);

    /// A message that is there already is not repeated.
    void add(const QString& text);
    QStringList messages() const;
    void clear();

private:
    void fit();

    QListWidget* list_;
};

} // namespace orvane::desk
