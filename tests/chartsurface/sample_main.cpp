// Writes a sample chart picture, for looking at the surface's output by eye:
//   chartsurface_sample FAMILY [OPTIONS [WIDTH HEIGHT [STYLE]]] > out.png
#include "chartsurface/chart_export.h"
#include "foundation/vb_error.h"
#include "sample_charts.h"

#include <QApplication>
#include <QFile>

#include <cstdio>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 2 || !tallix::samples::Families().contains(args[1])) {
        std::fprintf(stderr, "usage: chartsurface_sample FAMILY [OPTIONS [WIDTH HEIGHT [STYLE]]] > out.png\nfamilies: %s\n",
                     qPrintable(tallix::samples::Families().join(' ')));
        return 2;
    }
    tallix::TChartModel m;
    const int options = args.size() > 2 ? args[2].toInt() : tallix::samples::DefaultCount(args[1]);
    if (options < 1 || options > 20) {
        std::fprintf(stderr, "chartsurface_sample: OPTIONS must be 1 to 20, not \"%s\"\n", qPrintable(args[2]));
        return 2;
    }
    tallix::samples::Build(m, args[1], options);
    m.setHeadlessSize(args.size() > 4 ? QSize(args[3].toInt(), args[4].toInt()) : QSize(640, 400));
    if (args.size() > 5) {
        auto& s = m.SERIES(0);
        s.Marks.Style = args[5].toInt();
        if (s.IsBarKind())
            for (int i = 0; i < s.Count(); ++i)
                s.PointLabel(i) = QString::number(s.PointValue(i)) + " /";
    }
    if (qEnvironmentVariableIsSet("TALLIX_SAMPLE_DECOR")) {
        m.Header.Text = QStringList{"Which option do you prefer?", "All keypads"};
        m.Legend.Visible = true;
        m.Axis.Left.Title.Caption = "Votes";
        m.Axis.Bottom.Title.Caption = "Options";
        const int t = m.Tools.Add(tallix::tkAnnotation);
        auto& a = m.Tools.Items(t).asAnnotation();
        a.Text = "Abstain Count = 3";
        a.Position = 3;
        a.Shape.Font.Size = 16;
        a.Shape.Shadow.Visible = false;
    }
    const QByteArray format = qgetenv("TALLIX_SAMPLE_FORMAT");
    const tallix::PictureFormat pf = format == "emf" ? tallix::PictureFormat::EMF
                                     : format == "wmf" ? tallix::PictureFormat::WMF
                                     : format == "eps" ? tallix::PictureFormat::EPS
                                                       : tallix::PictureFormat::PNG;
    QFile out;
    out.open(stdout, QIODevice::WriteOnly);
    try {
        out.write(tallix::ChartPictureBytes(m, pf));
    } catch (const tallix::VbError& e) {
        std::fprintf(stderr, "chartsurface_sample: %s\n", qPrintable(e.description()));
        return 1;
    }
    return 0;
}
