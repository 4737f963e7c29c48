#pragma once

#include <QHash>
#include <QIcon>

namespace lomarin::ui {

// The object tree's images, drawn once, looked up by the image index that tells a node's kind.
class ExplorerIcons {
 public:
  ExplorerIcons();
  QIcon icon(int imageIndex) const { return icons_.value(imageIndex); }

 private:
  QHash<int, QIcon> icons_;
};

}  // namespace lomarin::ui
