#include "app/ui/vote_app.h"

int main(int argc, char** argv)
{
    return tallix::RunVoteProgram(argc, argv);
}
