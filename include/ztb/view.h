/* A viewer for exchange files: a server for the browser of this machine, with a page that lies in
 * the library.
 *
 *   ztbView* view;
 *   if (!ztbViewCreate(&view)) return 1;
 *   if (!ztbViewOption(view, "file", "diet.rxf") || !ztbViewOpen(view)) {
 *     puts(ztbViewMessage(view));
 *   } else {
 *     puts(ztbViewLink(view));
 *     ztbViewRun(view);
 *   }
 *   ztbViewFree(&view);
 *
 * The server listens on 127.0.0.1 alone. Whoever has the link sees the files: it holds a token that
 * every request is asked for. The functions stand in libztbview.so; link with it, or open it at run
 * time.
 */
#ifndef ZTB_VIEW_H_
#define ZTB_VIEW_H_

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ztbViewRec ztbView;

/* 1, or 0 without memory. */
int ztbViewCreate(ztbView** view);
/* Ends the viewer, after ztbViewRun has returned, and sets *view to null. */
void ztbViewFree(ztbView** view);

/* Before ztbViewOpen: "file", given once or twice; "port", from 0 (any that is free, the default)
 * to 65535; "read-timeout", the seconds in which a request has to be there, 5; "idle-timeout", the
 * seconds after which a server ends that no page asks, 600; "solve", 1 where the page of a model
 * solves it at once; "framed", 1 where pages of this machine, such as notebooks, may show the page
 * in a frame. 0 for an option that there is not, or a value that it does not take. */
int ztbViewOption(ztbView* view, const char* name, const char* value);

/* Opens the files and takes the port. */
int ztbViewOpen(ztbView* view);

/* The port, 0 before the viewer is open, and what opens the page; the link is a secret. */
int ztbViewPort(const ztbView* view);
const char* ztbViewLink(const ztbView* view);

/* Serves, in threads of its own, until ztbViewStop or until no page has asked for anything for
 * long enough. */
int ztbViewRun(ztbView* view);
/* May be called from another thread or a signal handler, also before ztbViewRun. */
void ztbViewStop(ztbView* view);

/* Each of the functions above that fails gives 0. Then these tell the reason, and whether an option
 * made no sense. */
const char* ztbViewMessage(const ztbView* view);
int ztbViewIsUsage(const ztbView* view);

#ifdef __cplusplus
}
#endif

#endif /* ZTB_VIEW_H_ */
