/* Camera frames for the screen: the three planes of a camera's image to RGBA, scaled.
 * See Preview.kt. */
#include <jni.h>
#include <zelm_imageutil.h>

/* Describes a camera's image (YUV_420_888) where it lies. Its rows have a stride, and
 * its chroma samples one of their own, the pixel stride: at 2 the U and V planes are
 * the two bytes of the same pairs, in either order. Any other image is refused: the
 * record then is 0 x 0 pixels large. */
static ImageStruct cameraFrame(JNIEnv *env, jint width, jint height, jobject luma,
                               jobject u, jobject v, jint rowStride, jint chromaStride,
                               jint pixelStride) {
  uint8_t *y = (*env)->GetDirectBufferAddress(env, luma);
  const uint8_t *uBytes = (*env)->GetDirectBufferAddress(env, u);
  const uint8_t *vBytes = (*env)->GetDirectBufferAddress(env, v);
  const int uFirst = vBytes == uBytes + 1;
  const uint8_t *chroma = uFirst ? uBytes : vBytes;
  const uint32_t format = uFirst ? FORMAT_YUV420SP : FORMAT_YUV420SPVU;
  const int interleaved = pixelStride == 2 && (uFirst || uBytes == vBytes + 1);
  if (!interleaved || chromaStride != rowStride || y == NULL || chroma <= y ||
      (uintptr_t)chroma - (uintptr_t)y > UINT32_MAX) {
    return zelmPaddedFrame(format, 0, 0, 0, 0, y);
  }
  return zelmPaddedFrame(format, (uint32_t)width, (uint32_t)height, (uint32_t)rowStride,
                         (uint32_t)((uintptr_t)chroma - (uintptr_t)y), y);
}

/* A direct buffer for the screen; refused in the same way if it is too small. */
static ImageStruct screenFrame(JNIEnv *env, jobject buffer, jint width, jint height) {
  const ImageStruct frame =
      zelmWholeFrame(FORMAT_RGBA8888, (uint32_t)width, (uint32_t)height,
                     (*env)->GetDirectBufferAddress(env, buffer));
  const jlong capacity = (*env)->GetDirectBufferCapacity(env, buffer);
  if (capacity < 0 || (uint64_t)capacity < frame.dataSize) {
    return zelmWholeFrame(FORMAT_RGBA8888, 0, 0, frame.data);
  }
  return frame;
}

JNIEXPORT jint JNICALL Java_org_example_preview_Preview_scale(
    JNIEnv *env, jclass type, jint width, jint height, jobject luma, jobject u,
    jobject v, jint rowStride, jint chromaStride, jint pixelStride, jobject screen,
    jint screenWidth, jint screenHeight) {
  const ImageStruct src =
      cameraFrame(env, width, height, luma, u, v, rowStride, chromaStride, pixelStride);
  const ImageStruct dst = screenFrame(env, screen, screenWidth, screenHeight);
  (void)type;
  return Zelm_Resize_and_Convert(src, dst, RESIZE_LINEAR, RESIZE_LINEAR, 0);
}
