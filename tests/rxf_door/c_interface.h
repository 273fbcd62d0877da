/* The part of the tests that is compiled as C. */
#ifndef ZTB_TESTS_RXF_DOOR_C_INTERFACE_H_
#define ZTB_TESTS_RXF_DOOR_C_INTERFACE_H_

#ifdef __cplusplus
extern "C" {
#endif

/* Sum of label number times value over the records of a symbol of one position; -1, with the reason
 * in `message`, when something fails. */
double sumFromC(const char* path, const char* symbol, char* message, int messageSize);

#ifdef __cplusplus
}
#endif

#endif /* ZTB_TESTS_RXF_DOOR_C_INTERFACE_H_ */
