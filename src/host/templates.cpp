#include "templates.h"

#include <QList>
#include <QPair>
#include <QString>

namespace tallix::host {

namespace {

#define DECL "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
#define NS_PML                                                                                     \
    " xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\""                          \
    " xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\""            \
    " xmlns:p=\"http://schemas.openxmlformats.org/presentationml/2006/main\""
#define GROUP_PROPS                                                                                \
    "<p:nvGrpSpPr><p:cNvPr id=\"1\" name=\"\"/><p:cNvGrpSpPr/><p:nvPr/></p:nvGrpSpPr>"            \
    "<p:grpSpPr><a:xfrm><a:off x=\"0\" y=\"0\"/><a:ext cx=\"0\" cy=\"0\"/>"                       \
    "<a:chOff x=\"0\" y=\"0\"/><a:chExt cx=\"0\" cy=\"0\"/></a:xfrm></p:grpSpPr>"
#define CLR_MAP                                                                                    \
    "<p:clrMap bg1=\"lt1\" tx1=\"dk1\" bg2=\"lt2\" tx2=\"dk2\" accent1=\"accent1\" "              \
    "accent2=\"accent2\" accent3=\"accent3\" accent4=\"accent4\" accent5=\"accent5\" "            \
    "accent6=\"accent6\" hlink=\"hlink\" folHlink=\"folHlink\"/>"
#define DEF_RPR(size, font)                                                                        \
    "<a:defRPr sz=\"" size "\" kern=\"1200\"><a:solidFill><a:schemeClr val=\"tx1\"/></a:solidFill>" \
    "<a:latin typeface=\"+" font "-lt\"/><a:ea typeface=\"+" font "-ea\"/>"                      \
    "<a:cs typeface=\"+" font "-cs\"/></a:defRPr>"
#define PH_SP(id, name, ph, xfrm, text)                                                            \
    "<p:sp><p:nvSpPr><p:cNvPr id=\"" id "\" name=\"" name "\"/><p:cNvSpPr><a:spLocks noGrp=\"1\"/>" \
    "</p:cNvSpPr><p:nvPr>" ph "</p:nvPr></p:nvSpPr><p:spPr>" xfrm "</p:spPr>"                    \
    "<p:txBody><a:bodyPr/><a:lstStyle/><a:p>" text "<a:endParaRPr lang=\"en-US\"/></a:p></p:txBody></p:sp>"

const char* const kTheme =
    DECL "<a:theme xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\" name=\"tallix\">"
    "<a:themeElements><a:clrScheme name=\"tallix\">"
    "<a:dk1><a:sysClr val=\"windowText\" lastClr=\"000000\"/></a:dk1>"
    "<a:lt1><a:sysClr val=\"window\" lastClr=\"FFFFFF\"/></a:lt1>"
    "<a:dk2><a:srgbClr val=\"44546A\"/></a:dk2><a:lt2><a:srgbClr val=\"E7E6E6\"/></a:lt2>"
    "<a:accent1><a:srgbClr val=\"4472C4\"/></a:accent1><a:accent2><a:srgbClr val=\"ED7D31\"/></a:accent2>"
    "<a:accent3><a:srgbClr val=\"A5A5A5\"/></a:accent3><a:accent4><a:srgbClr val=\"FFC000\"/></a:accent4>"
    "<a:accent5><a:srgbClr val=\"5B9BD5\"/></a:accent5><a:accent6><a:srgbClr val=\"70AD47\"/></a:accent6>"
    "<a:hlink><a:srgbClr val=\"0563C1\"/></a:hlink><a:folHlink><a:srgbClr val=\"954F72\"/></a:folHlink>"
    "</a:clrScheme>"
    "<a:fontScheme name=\"tallix\"><a:majorFont><a:latin typeface=\"Liberation Sans\"/><a:ea typeface=\"\"/>"
    "<a:cs typeface=\"\"/></a:majorFont><a:minorFont><a:latin typeface=\"Liberation Sans\"/>"
    "<a:ea typeface=\"\"/><a:cs typeface=\"\"/></a:minorFont></a:fontScheme>"
    "<a:fmtScheme name=\"tallix\"><a:fillStyleLst>"
    "<a:solidFill><a:schemeClr val=\"phClr\"/></a:solidFill>"
    "<a:solidFill><a:schemeClr val=\"phClr\"><a:tint val=\"50000\"/></a:schemeClr></a:solidFill>"
    "<a:solidFill><a:schemeClr val=\"phClr\"><a:shade val=\"80000\"/></a:schemeClr></a:solidFill>"
    "</a:fillStyleLst><a:lnStyleLst>"
    "<a:ln w=\"6350\"><a:solidFill><a:schemeClr val=\"phClr\"/></a:solidFill></a:ln>"
    "<a:ln w=\"12700\"><a:solidFill><a:schemeClr val=\"phClr\"/></a:solidFill></a:ln>"
    "<a:ln w=\"19050\"><a:solidFill><a:schemeClr val=\"phClr\"/></a:solidFill></a:ln>"
    "</a:lnStyleLst><a:effectStyleLst>"
    "<a:effectStyle><a:effectLst/></a:effectStyle><a:effectStyle><a:effectLst/></a:effectStyle>"
    "<a:effectStyle><a:effectLst/></a:effectStyle>"
    "</a:effectStyleLst><a:bgFillStyleLst>"
    "<a:solidFill><a:schemeClr val=\"phClr\"/></a:solidFill>"
    "<a:solidFill><a:schemeClr val=\"phClr\"><a:tint val=\"95000\"/></a:schemeClr></a:solidFill>"
    "<a:solidFill><a:schemeClr val=\"phClr\"><a:shade val=\"90000\"/></a:schemeClr></a:solidFill>"
    "</a:bgFillStyleLst></a:fmtScheme></a:themeElements><a:objectDefaults/><a:extraClrSchemeLst/></a:theme>";

const char* const kMaster =
    DECL "<p:sldMaster" NS_PML "><p:cSld><p:bg><p:bgRef idx=\"1001\"><a:schemeClr val=\"bg1\"/></p:bgRef></p:bg>"
    "<p:spTree>" GROUP_PROPS
    PH_SP("2", "Title Placeholder 1", "<p:ph type=\"title\"/>",
          "<a:xfrm><a:off x=\"838200\" y=\"365125\"/><a:ext cx=\"10515600\" cy=\"1325563\"/></a:xfrm>"
          "<a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom>", "")
    PH_SP("3", "Text Placeholder 2", "<p:ph type=\"body\" idx=\"1\"/>",
          "<a:xfrm><a:off x=\"838200\" y=\"1825625\"/><a:ext cx=\"10515600\" cy=\"4351338\"/></a:xfrm>"
          "<a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom>", "")
    "</p:spTree></p:cSld>" CLR_MAP
    "<p:sldLayoutIdLst><p:sldLayoutId id=\"2147483649\" r:id=\"rId1\"/></p:sldLayoutIdLst>"
    "<p:txStyles><p:titleStyle><a:lvl1pPr algn=\"l\" defTabSz=\"914400\" rtl=\"0\" eaLnBrk=\"1\" latinLnBrk=\"0\" hangingPunct=\"1\">"
    "<a:lnSpc><a:spcPct val=\"90000\"/></a:lnSpc><a:spcBef><a:spcPct val=\"0\"/></a:spcBef><a:buNone/>"
    DEF_RPR("4400", "mj") "</a:lvl1pPr></p:titleStyle>"
    "<p:bodyStyle><a:lvl1pPr marL=\"228600\" indent=\"-228600\" algn=\"l\" defTabSz=\"914400\" rtl=\"0\" eaLnBrk=\"1\" latinLnBrk=\"0\" hangingPunct=\"1\">"
    "<a:lnSpc><a:spcPct val=\"90000\"/></a:lnSpc><a:spcBef><a:spcPts val=\"1000\"/></a:spcBef>"
    "<a:buFont typeface=\"Arial\"/><a:buChar char=\"&#8226;\"/>" DEF_RPR("2800", "mn") "</a:lvl1pPr></p:bodyStyle>"
    "<p:otherStyle><a:defPPr><a:defRPr lang=\"en-US\"/></a:defPPr><a:lvl1pPr marL=\"0\" algn=\"l\" defTabSz=\"914400\" rtl=\"0\" eaLnBrk=\"1\" latinLnBrk=\"0\" hangingPunct=\"1\">"
    DEF_RPR("1800", "mn") "</a:lvl1pPr></p:otherStyle></p:txStyles></p:sldMaster>";

const char* const kLayout =
    DECL "<p:sldLayout" NS_PML " type=\"obj\" preserve=\"1\"><p:cSld name=\"Title and Content\"><p:spTree>" GROUP_PROPS
    PH_SP("2", "Title 1", "<p:ph type=\"title\"/>", "", "")
    PH_SP("3", "Content Placeholder 2", "<p:ph idx=\"1\"/>", "", "")
    "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sldLayout>";

const char* const kSlide =
    DECL "<p:sld" NS_PML "><p:cSld><p:spTree>" GROUP_PROPS
    PH_SP("2", "Title 1", "<p:ph type=\"title\"/>", "", "")
    PH_SP("3", "Content Placeholder 2", "<p:ph idx=\"1\"/>", "", "")
    "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sld>";

#define RELS_OPEN DECL "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
#define REL(id, type, target) \
    "<Relationship Id=\"" id "\" Type=\"http://schemas.openxmlformats.org/" type "\" Target=\"" target "\"/>"

} // namespace

const char* const kNotesMasterXml =
    DECL "<p:notesMaster" NS_PML "><p:cSld><p:bg><p:bgRef idx=\"1001\"><a:schemeClr val=\"bg1\"/></p:bgRef></p:bg>"
    "<p:spTree>" GROUP_PROPS
    "<p:sp><p:nvSpPr><p:cNvPr id=\"2\" name=\"Slide Image Placeholder 1\"/><p:cNvSpPr><a:spLocks noGrp=\"1\" noRot=\"1\" noChangeAspect=\"1\"/></p:cNvSpPr>"
    "<p:nvPr><p:ph type=\"sldImg\" idx=\"2\"/></p:nvPr></p:nvSpPr><p:spPr><a:xfrm><a:off x=\"685800\" y=\"1143000\"/>"
    "<a:ext cx=\"5486400\" cy=\"3086100\"/></a:xfrm><a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom><a:noFill/>"
    "<a:ln w=\"12700\"><a:solidFill><a:prstClr val=\"black\"/></a:solidFill></a:ln></p:spPr></p:sp>"
    PH_SP("3", "Notes Placeholder 2", "<p:ph type=\"body\" sz=\"quarter\" idx=\"1\"/>",
          "<a:xfrm><a:off x=\"685800\" y=\"4400550\"/><a:ext cx=\"5486400\" cy=\"3600450\"/></a:xfrm>"
          "<a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom>", "")
    "</p:spTree></p:cSld>" CLR_MAP
    "<p:notesStyle><a:lvl1pPr marL=\"0\" algn=\"l\" defTabSz=\"914400\" rtl=\"0\" eaLnBrk=\"1\" latinLnBrk=\"0\" hangingPunct=\"1\">"
    DEF_RPR("1200", "mn") "</a:lvl1pPr></p:notesStyle></p:notesMaster>";

const char* const kNotesSlideXml =
    DECL "<p:notes" NS_PML "><p:cSld><p:spTree>" GROUP_PROPS
    "<p:sp><p:nvSpPr><p:cNvPr id=\"2\" name=\"Slide Image Placeholder 1\"/><p:cNvSpPr><a:spLocks noGrp=\"1\" noRot=\"1\" noChangeAspect=\"1\"/></p:cNvSpPr>"
    "<p:nvPr><p:ph type=\"sldImg\"/></p:nvPr></p:nvSpPr><p:spPr/></p:sp>"
    PH_SP("3", "Notes Placeholder 2", "<p:ph type=\"body\" idx=\"1\"/>", "", "")
    "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:notes>";

QList<QPair<QString, QByteArray>> BlankDeckParts(int slides)
{
    QList<QPair<QString, QByteArray>> parts;
    auto add = [&](const QString& name, const QByteArray& bytes) { parts.append({name, bytes}); };
    QByteArray types =
        DECL "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
        "<Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
        "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
        "<Override PartName=\"/ppt/presentation.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.presentationml.presentation.main+xml\"/>"
        "<Override PartName=\"/ppt/slideMasters/slideMaster1.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.presentationml.slideMaster+xml\"/>"
        "<Override PartName=\"/ppt/slideLayouts/slideLayout1.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.presentationml.slideLayout+xml\"/>"
        "<Override PartName=\"/ppt/theme/theme1.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.theme+xml\"/>"
        "<Override PartName=\"/ppt/presProps.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.presentationml.presProps+xml\"/>"
        "<Override PartName=\"/ppt/viewProps.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.presentationml.viewProps+xml\"/>"
        "<Override PartName=\"/ppt/tableStyles.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.presentationml.tableStyles+xml\"/>"
        "<Override PartName=\"/docProps/core.xml\" ContentType=\"application/vnd.openxmlformats-package.core-properties+xml\"/>"
        "<Override PartName=\"/docProps/app.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.extended-properties+xml\"/>";
    QByteArray presRels = RELS_OPEN
        REL("rId1", "officeDocument/2006/relationships/slideMaster", "slideMasters/slideMaster1.xml")
        REL("rId2", "officeDocument/2006/relationships/theme", "theme/theme1.xml")
        REL("rId3", "officeDocument/2006/relationships/presProps", "presProps.xml")
        REL("rId4", "officeDocument/2006/relationships/viewProps", "viewProps.xml")
        REL("rId5", "officeDocument/2006/relationships/tableStyles", "tableStyles.xml");
    QByteArray ids;
    for (int i = 1; i <= slides; ++i) {
        types += QStringLiteral("<Override PartName=\"/ppt/slides/slide%1.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.presentationml.slide+xml\"/>")
                     .arg(i).toUtf8();
        presRels += QStringLiteral("<Relationship Id=\"rId%1\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/slide\" Target=\"slides/slide%2.xml\"/>")
                        .arg(5 + i).arg(i).toUtf8();
        ids += QStringLiteral("<p:sldId id=\"%1\" r:id=\"rId%2\"/>").arg(255 + i).arg(5 + i).toUtf8();
    }
    types += "</Types>";
    presRels += "</Relationships>";

    add("[Content_Types].xml", types);
    add("_rels/.rels", RELS_OPEN
        REL("rId1", "officeDocument/2006/relationships/officeDocument", "ppt/presentation.xml")
        REL("rId2", "package/2006/relationships/metadata/core-properties", "docProps/core.xml")
        REL("rId3", "officeDocument/2006/relationships/extended-properties", "docProps/app.xml")
        "</Relationships>");
    add("docProps/core.xml",
        DECL "<cp:coreProperties xmlns:cp=\"http://schemas.openxmlformats.org/package/2006/metadata/core-properties\" "
        "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" xmlns:dcterms=\"http://purl.org/dc/terms/\" "
        "xmlns:dcmitype=\"http://purl.org/dc/dcmitype/\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">"
        "<dc:title>tallix questions</dc:title><dc:creator>tallix-deck</dc:creator></cp:coreProperties>");
    add("docProps/app.xml",
        QByteArray(DECL "<Properties xmlns=\"http://schemas.openxmlformats.org/officeDocument/2006/extended-properties\" "
        "xmlns:vt=\"http://schemas.openxmlformats.org/officeDocument/2006/docPropsVTypes\">"
        "<Application>tallix-deck</Application><Slides>") + QByteArray::number(slides) + "</Slides></Properties>");
    add("ppt/presentation.xml",
        QByteArray(DECL "<p:presentation" NS_PML " saveSubsetFonts=\"1\">"
        "<p:sldMasterIdLst><p:sldMasterId id=\"2147483648\" r:id=\"rId1\"/></p:sldMasterIdLst>"
        "<p:sldIdLst>") + ids + "</p:sldIdLst>"
        "<p:sldSz cx=\"12192000\" cy=\"6858000\"/><p:notesSz cx=\"6858000\" cy=\"9144000\"/>"
        "<p:defaultTextStyle><a:lvl1pPr marL=\"0\" algn=\"l\" defTabSz=\"914400\" rtl=\"0\" eaLnBrk=\"1\" latinLnBrk=\"0\" hangingPunct=\"1\">"
        DEF_RPR("1800", "mn") "</a:lvl1pPr></p:defaultTextStyle></p:presentation>");
    add("ppt/_rels/presentation.xml.rels", presRels);
    add("ppt/presProps.xml", DECL "<p:presentationPr" NS_PML "/>");
    add("ppt/viewProps.xml", DECL "<p:viewPr" NS_PML "><p:gridSpacing cx=\"76200\" cy=\"76200\"/></p:viewPr>");
    add("ppt/tableStyles.xml", DECL "<a:tblStyleLst xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\" def=\"{5C22544A-7EE6-4342-B048-85BDC9FD1C3A}\"/>");
    add("ppt/theme/theme1.xml", kTheme);
    add("ppt/slideMasters/slideMaster1.xml", kMaster);
    add("ppt/slideMasters/_rels/slideMaster1.xml.rels", RELS_OPEN
        REL("rId1", "officeDocument/2006/relationships/slideLayout", "../slideLayouts/slideLayout1.xml")
        REL("rId2", "officeDocument/2006/relationships/theme", "../theme/theme1.xml") "</Relationships>");
    add("ppt/slideLayouts/slideLayout1.xml", kLayout);
    add("ppt/slideLayouts/_rels/slideLayout1.xml.rels", RELS_OPEN
        REL("rId1", "officeDocument/2006/relationships/slideMaster", "../slideMasters/slideMaster1.xml") "</Relationships>");
    for (int i = 1; i <= slides; ++i) {
        add(QStringLiteral("ppt/slides/slide%1.xml").arg(i), kSlide);
        add(QStringLiteral("ppt/slides/_rels/slide%1.xml.rels").arg(i), RELS_OPEN
            REL("rId1", "officeDocument/2006/relationships/slideLayout", "../slideLayouts/slideLayout1.xml") "</Relationships>");
    }
    return parts;
}

} // namespace tallix::host
