#include "deck_tool.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout), err(stderr);
    return tallix::deck::RunDeckTool(app.arguments().mid(1), out, err);
}
