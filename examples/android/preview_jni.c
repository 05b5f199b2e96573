/* Camera frames for the screen: NV21 to RGBA, scaled. See Preview.kt. */
#include <jni.h>
#include <zelm_imageutil.h>

/* A record of a whole frame in a direct buffer; without `data` if that is too small. */
static ImageStruct frameIn(JNIEnv* env, jobject buffer, uint32_t format, jint width,
                           jint height) {
  const ImageStruct frame = zelmWholeFrame(format, (uint32_t)width, (uint32_t)height,
                                           (*env)->GetDirectBufferAddress(env, buffer));
  const jlong capacity = (*env)->GetDirectBufferCapacity(env, buffer);
  if (capacity < 0 || (uint64_t)capacity < frame.dataSize) {
    return zelmWholeFrame(format, (uint32_t)width, (uint32_t)height, NULL);
  }
  return frame;
}

JNIEXPORT jint JNICALL Java_org_example_preview_Preview_scale(
    JNIEnv* env, jclass type, jobject camera, jint width, jint height, jobject screen,
    jint screenWidth, jint screenHeight) {
  (void)type;
  ImageStruct src = frameIn(env, camera, FORMAT_YUV420SPVU, width, height);
  ImageStruct dst = frameIn(env, screen, FORMAT_RGBA8888, screenWidth, screenHeight);
  return Zelm_Resize_and_Convert(src, dst, RESIZE_LINEAR, RESIZE_LINEAR, 0);
}
