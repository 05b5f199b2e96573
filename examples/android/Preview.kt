// The part of the sketch in Kotlin: a camera's images to bitmaps. See preview_jni.c.
package org.example.preview

import android.graphics.Bitmap
import android.media.Image
import java.nio.ByteBuffer

/** Makes bitmaps for the screen of camera images in YUV_420_888, which are not copied. */
class Preview {
    private val bitmap = Bitmap.createBitmap(640, 360, Bitmap.Config.ARGB_8888)
    private val screen = ByteBuffer.allocateDirect(640 * 360 * 4)

    /** The [image], scaled. ARGB_8888 is R, G, B, A in memory. */
    fun show(image: Image): Bitmap {
        val (luma, u, v) = image.planes
        val result = scale(
            image.width, image.height, luma.buffer, u.buffer, v.buffer,
            luma.rowStride, u.rowStride, u.pixelStride,
            screen, bitmap.width, bitmap.height,
        )
        check(result == 0) { "zelm_imageutil: $result" }
        screen.rewind()
        bitmap.copyPixelsFromBuffer(screen)
        return bitmap
    }

    companion object {
        init {
            System.loadLibrary("preview")
        }

        @JvmStatic
        private external fun scale(
            width: Int, height: Int, luma: ByteBuffer, u: ByteBuffer, v: ByteBuffer,
            rowStride: Int, chromaStride: Int, pixelStride: Int,
            screen: ByteBuffer, screenWidth: Int, screenHeight: Int,
        ): Int
    }
}
