package org.example.preview

import android.graphics.Bitmap
import java.nio.ByteBuffer

/** Makes bitmaps for the screen of camera frames in NV21, in memory outside the heap. */
class Preview(private val width: Int, private val height: Int) {
    val camera: ByteBuffer = ByteBuffer.allocateDirect(width * height * 3 / 2)

    private val bitmap = Bitmap.createBitmap(640, 360, Bitmap.Config.ARGB_8888)
    private val screen = ByteBuffer.allocateDirect(640 * 360 * 4)

    /** The frame that lies in [camera], scaled. ARGB_8888 is R, G, B, A in memory. */
    fun show(): Bitmap {
        val result = scale(camera, width, height, screen, bitmap.width, bitmap.height)
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
            camera: ByteBuffer, width: Int, height: Int,
            screen: ByteBuffer, screenWidth: Int, screenHeight: Int,
        ): Int
    }
}
