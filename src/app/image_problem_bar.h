// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>

class QLabel;

namespace plyra {

class MorphDocument;

/// The bar above a document window's editors that says which of its images could not
/// be shown and why ("The first image “Image_0.jpg” could not be shown: the image is
/// too large..."), and that the file is kept as it is. It follows the document's
/// changes and hides itself when every image shows.
/// Threads: main thread only.
class ImageProblemBar : public QFrame {
    Q_OBJECT

public:
    explicit ImageProblemBar(MorphDocument& document, QWidget* parent = nullptr);
    ~ImageProblemBar() override;

    /// The text shown; empty when every image shows.
    QString message() const;
    /// Looks at the document's images again.
    void refresh();

private:
    MorphDocument& m_document;
    QLabel* m_text = nullptr;
};

} // namespace plyra
