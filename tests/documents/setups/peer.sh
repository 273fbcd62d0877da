# The example of a peer, and the place where it goes: peer.sh PROJECT
cp "$1"/examples/peer/ports.c .
mkdir -p ports
