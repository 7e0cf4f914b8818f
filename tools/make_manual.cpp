// make_manual: turns the operator's manual (Markdown with pictures beside it) into the
// PDF the program ships, so the PDF always matches its source.
//
//   make_manual SOURCE.md OUTPUT.pdf
//
// Run by the build (with QT_QPA_PLATFORM=offscreen). Uses QTextDocument's Markdown
// reader and QPdfWriter only. Exit status 0 on success, 1 when the source cannot be
// read or the PDF cannot be written, 2 on wrong use.
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QPageLayout>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>
#include <QUrl>
#include <cstdio>

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 3) {
        std::fputs("Aufruf: make_manual QUELLE.md AUSGABE.pdf\n", stderr);
        return 2;
    }
    QFile source(args[1]);
    if (!source.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "Anleitung nicht lesbar: %s\n", qPrintable(args[1]));
        return 1;
    }
    const QString folder = QFileInfo(args[1]).absolutePath() + QLatin1Char('/');

    QPdfWriter pdf(args[2]);
    pdf.setTitle(QStringLiteral("Kolibrino – Anleitung"));
    pdf.setCreator(QStringLiteral("Kolibrino make_manual"));
    pdf.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(20, 18, 20, 18),
                                  QPageLayout::Millimeter));
    pdf.setResolution(96);

    QTextDocument doc;
    doc.setBaseUrl(QUrl::fromLocalFile(folder));
    doc.setDefaultFont(QFont(QStringLiteral("Liberation Sans"), 10));
    doc.setMarkdown(QString::fromUtf8(source.readAll()));
    const QRectF page = pdf.pageLayout().paintRectPixels(pdf.resolution());
    doc.setPageSize(page.size());

    // Pictures no wider than the text.
    const qreal maxWidth = page.width() - 2 * doc.documentMargin();
    for (QTextBlock b = doc.begin(); b.isValid(); b = b.next()) {
        for (auto it = b.begin(); !it.atEnd(); ++it) {
            const QTextFragment f = it.fragment();
            if (!f.charFormat().isImageFormat()) continue;
            QTextImageFormat img = f.charFormat().toImageFormat();
            const QSize size = QImageReader(folder + img.name()).size();
            if (!size.isValid()) {
                std::fprintf(stderr, "Bild fehlt: %s\n", qPrintable(img.name()));
                return 1;
            }
            const qreal w = qMin<qreal>(maxWidth, size.width());
            img.setWidth(w);
            img.setHeight(size.height() * w / size.width());
            QTextCursor c(&doc);
            c.setPosition(f.position());
            c.setPosition(f.position() + f.length(), QTextCursor::KeepAnchor);
            c.setCharFormat(img);
        }
    }
    doc.print(&pdf);
    if (!QFileInfo(args[2]).exists() || QFileInfo(args[2]).size() == 0) {
        std::fprintf(stderr, "PDF nicht geschrieben: %s\n", qPrintable(args[2]));
        return 1;
    }
    return 0;
}
