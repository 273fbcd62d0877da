/* A library in which the loader finds nothing. */
__declspec(dllexport) int nothingOfAPeer(void);

int nothingOfAPeer(void) {
  return 0;
}
