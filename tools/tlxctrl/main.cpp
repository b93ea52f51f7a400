#include "tlxctrl_app.h"

int main(int argc, char** argv)
{
    return tallix::TlxctrlMain(argc, argv);
}
