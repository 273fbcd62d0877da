// FRAGMENTS
void XCreate(void** object) {
  (void)object;
}
int main(void) {
  return 0;
}
